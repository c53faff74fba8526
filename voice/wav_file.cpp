#include "voice/wav_file.h"

#include <sndfile.h>
#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace Voice {

namespace {

struct Resampler
{
    Resampler (int from, int to)
    {
        // High quality: 20 bits, flat to well above the voice's band, a thousand times faster than real time.
        const soxr_io_spec_t io = soxr_io_spec (SOXR_FLOAT32_I, SOXR_FLOAT32_I);
        const soxr_quality_spec_t quality = soxr_quality_spec (SOXR_HQ, 0);
        soxr_error_t error = nullptr;
        handle = soxr_create (from, to, 1, &error, &io, &quality, nullptr);
        if (error != nullptr)
            throw std::runtime_error (std::string ("resampling failed: ") + error);
    }
    ~Resampler () { soxr_delete (handle); }
    Resampler (const Resampler&) = delete;
    Resampler& operator= (const Resampler&) = delete;

    /** Feeds `count` samples (none: the end) and returns what came out. */
    std::size_t process (const float* in, std::size_t count, float* out, std::size_t room)
    {
        std::size_t used = 0, made = 0;
        if (const soxr_error_t error = soxr_process (handle, in, count, &used, out, room, &made))
            throw std::runtime_error (std::string ("resampling failed: ") + error);
        return made;
    }

    soxr_t handle = nullptr;
};

/** The song through the resampler into `file`, padded with silence or cut to `frames`. */
void writeFrames (SNDFILE* file, const std::vector<float>& sound, float gain, int from, int to, std::size_t frames)
{
    // In blocks, so that a long song is never held whole at the output rate.
    const std::size_t block = 65536;
    std::vector<float> in (block), out (block * static_cast<std::size_t> (to / from + 2));
    std::unique_ptr<Resampler> resampler = from == to ? nullptr : std::make_unique<Resampler> (from, to);
    for (std::size_t at = 0, written = 0; written < frames;)
    {
        const std::size_t count = std::min (block, sound.size () - std::min (at, sound.size ()));
        std::transform (sound.begin () + static_cast<long> (at), sound.begin () + static_cast<long> (at + count),
                        in.begin (), [gain] (float s) { return s * gain; });
        std::size_t made = resampler ? resampler->process (count ? in.data () : nullptr, count, out.data (), out.size ())
                                     : (std::copy_n (in.begin (), count, out.begin ()), count);
        at += count;
        if (count == 0 && made == 0)
        {
            // The resampler is drained: the rest of the song is silence.
            std::fill (out.begin (), out.end (), 0.0f);
            made = out.size ();
        }
        made = std::min (made, frames - written);
        if (sf_writef_float (file, out.data (), static_cast<sf_count_t> (made)) != static_cast<sf_count_t> (made))
            throw std::runtime_error (sf_strerror (file));
        written += made;
    }
}

} // namespace

void writeWav (const std::string& path, const std::vector<float>& sound, int from, int to, std::size_t frames,
               float peak)
{
    float largest = 0.0f;
    for (float s : sound)
        largest = std::max (largest, std::fabs (s));

    const std::string temporary = path + ".part" + std::to_string (getpid ());
    SF_INFO info {};
    info.samplerate = to;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open (temporary.c_str (), SFM_WRITE, &info);
    if (file == nullptr)
        throw std::runtime_error (path + ": cannot write: " + sf_strerror (nullptr));
    // Floats past full scale become the largest 16-bit values, not a wrap-around.
    sf_command (file, SFC_SET_CLIPPING, nullptr, SF_TRUE);

    std::string fault;
    try
    {
        writeFrames (file, sound, largest > 0.0f ? peak / largest : 0.0f, from, to, frames);
    }
    catch (const std::runtime_error& e)
    {
        fault = e.what ();
    }
    if (sf_close (file) != 0 && fault.empty ())
        fault = "the file could not be finished";
    if (fault.empty () && std::rename (temporary.c_str (), path.c_str ()) != 0)
        fault = std::string ("cannot move it into place: ") + std::strerror (errno);
    if (!fault.empty ())
    {
        std::remove (temporary.c_str ());
        throw std::runtime_error (path + ": cannot write: " + fault);
    }
}

std::vector<float> readWav (const std::string& path, int& rate)
{
    SF_INFO info {};
    SNDFILE* file = sf_open (path.c_str (), SFM_READ, &info);
    if (file == nullptr)
        throw std::runtime_error (path + ": cannot read: " + sf_strerror (nullptr));
    std::vector<float> frames (static_cast<std::size_t> (info.frames) * static_cast<std::size_t> (info.channels));
    const auto read = sf_readf_float (file, frames.data (), info.frames);
    sf_close (file);
    if (read != info.frames)
        throw std::runtime_error (path + ": cannot read: the file ends early");
    std::vector<float> mono (static_cast<std::size_t> (info.frames), 0.0f);
    for (std::size_t i = 0; i < frames.size (); ++i)
        mono[i / static_cast<std::size_t> (info.channels)] += frames[i] / static_cast<float> (info.channels);
    rate = info.samplerate;
    return mono;
}

} // namespace Voice
