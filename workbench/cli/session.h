// One run of the workbench: the module loaded as a host loads it, a project
// built from a song, the lyrics typed in host edits, idle passes, undo and
// redo, and what each synthesiser received at the end.
#pragma once

#include "workbench/cli/host_notes.h"
#include "score/song.h"
#include "svs/svs_interfaces.h"

#include <functional>
#include <string>
#include <vector>

namespace Workbench {

struct Options
{
    std::string modulePath;
    int idlePasses = 2;    ///< after the edits, and again after undo and redo
    bool paced = false;    ///< real idle calls, each after the agent's 1000 ms interval
    int undo = 0;
    int redo = 0;
    bool showEditor = false;
    double editorSeconds = 10.0;
    /** Told the step under way and how far into it (0 to 1), for a progress bar; may be empty. */
    std::function<void (const std::string& step, double fraction)> progress;
};

struct Received
{
    std::string track;
    std::string slot;
    std::string title;  ///< what the agent told the synthesiser its name is
    std::vector<SVS::SVSNote> notes;
    std::vector<HostNote> hostNotes;  ///< the track's notes at the end, part by part in the host's order
    std::vector<std::string> lyrics;  ///< per record, its host note's "lyrics"; empty for a rest
};

struct Timing
{
    double load = 0, build = 0, edits = 0, idle = 0, history = 0, teardown = 0, total = 0;  ///< seconds
    int lyricEdits = 0, idleCalls = 0, undone = 0, redone = 0;
    long long hostCalls = 0;  ///< calls the agent made into the host's project
};

struct Outcome
{
    std::vector<Received> synthesisers;
    std::string title;                      ///< as the song's file names it; empty when it doesn't
    std::vector<Score::TempoChange> tempi;  ///< the project's tempo map
    std::vector<Score::MeterChange> meters; ///< the song's time signatures; empty when it gives none
    Timing timing;
    std::vector<std::string> notices;  ///< things worth saying that are not errors
};

/** False with a message when the module cannot be loaded or the agent refuses to start. */
bool run (const Score::Song& song, const std::string& projectName, const Options& options, Outcome& out,
          std::string& error);

} // namespace Workbench
