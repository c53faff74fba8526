// The Festival engine's diphone voice, driven phone by phone: our own phone
// timing, our own pitch marks from our F0 contour, our own time mapping.
#pragma once

#include "voice/song_plan.h"

#include <thread>
#include <vector>

namespace Voice {

/** Festival is one interpreter per process, and an error outside its trap ends the process: the
    voice is started once, on the thread that then uses it, and used from that thread only. */
class FestivalVoice
{
public:
    static constexpr int sampleRate = 16000;

    /** The process's voice, started on the first call. Throws std::runtime_error when the engine
        or the voice cannot start, std::logic_error on any thread but the first caller's. */
    static FestivalVoice& instance ();

    /** The song from 0 to its duration. Throws std::runtime_error when the engine fails. */
    std::vector<float> render (const SongPlan& plan);

private:
    FestivalVoice ();
    void checkThread () const;

    std::thread::id owner;
};

} // namespace Voice
