#include "workbench/cli/singing.h"

#include "voice/wav_file.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Workbench {

namespace fs = std::filesystem;

namespace {

const float mixPeak = 0.89f;       // about -1 dBFS, as the worker writes its own
const double balancedLevel = 0.1;  // every track's RMS over its sound before the mix is scaled

std::string quoted (const std::string& s)
{
    std::string out = "\"";
    for (unsigned char c : s)
        if (c == '"' || c == '\\')
            out += '\\', out += static_cast<char> (c);
        else if (c >= 0x20)
            out += static_cast<char> (c);
    return out + "\"";
}

/** The song's length: where the last record of any synthesiser ends. */
double songLength (const Outcome& outcome)
{
    double end = 0.0;
    for (const auto& synth : outcome.synthesisers)
        for (const auto& note : synth.notes)
            end = std::max (end, note.endTime);
    return end;
}

/** A folder of its own for the run's files, gone with it. */
struct ScratchFolder
{
    ScratchFolder ()
    {
        static int count = 0;
        path = fs::temp_directory_path () / ("workbench-sing-" + std::to_string (getpid ()) + "-" + std::to_string (++count));
        fs::create_directories (path);
    }
    ~ScratchFolder ()
    {
        std::error_code ignored;
        fs::remove_all (path, ignored);
    }
    fs::path path;
};

std::string lastLine (const std::string& path)
{
    std::ifstream in (path);
    std::string line, last;
    while (std::getline (in, line))
        if (!line.empty ())
            last = line;
    return last;
}

/** The worker on `input`, writing `wav` itself (whole or not at all); false with the reason. */
bool runWorker (const std::string& worker, const std::string& input, const std::string& wav,
                const std::string& messages, double timeout, std::string& error)
{
    const pid_t child = fork ();
    if (child < 0)
    {
        error = "the sing worker could not be started";
        return false;
    }
    if (child == 0)
    {
        const int err = open (messages.c_str (), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int null = open ("/dev/null", O_RDWR);
        if (err >= 0)
            dup2 (err, STDERR_FILENO);
        if (null >= 0)
            dup2 (null, STDIN_FILENO), dup2 (null, STDOUT_FILENO);
        execl (worker.c_str (), worker.c_str (), "--quiet", input.c_str (), "-o", wav.c_str (), static_cast<char*> (nullptr));
        std::fprintf (stderr, "cannot run %s\n", worker.c_str ());
        _exit (127);
    }
    const auto deadline = std::chrono::steady_clock::now () + std::chrono::duration<double> (timeout);
    int status = 0;
    while (waitpid (child, &status, WNOHANG) == 0)
    {
        if (std::chrono::steady_clock::now () > deadline)
        {
            kill (child, SIGKILL);
            waitpid (child, &status, 0);
            char seconds[32];
            std::snprintf (seconds, sizeof seconds, "%.1f", timeout);
            error = "the sing worker did not finish within " + std::string (seconds) + " s and was stopped";
            return false;
        }
        std::this_thread::sleep_for (std::chrono::milliseconds (5));
    }
    if (WIFSIGNALED (status))
    {
        error = "the sing worker died (signal " + std::to_string (WTERMSIG (status)) + ")";
        return false;
    }
    if (WEXITSTATUS (status) != 0)
    {
        const std::string said = lastLine (messages);
        error = said.empty () ? "the sing worker failed (exit status " + std::to_string (WEXITSTATUS (status)) + ")" : said;
        return false;
    }
    return true;
}

/** Every track at one loudness (RMS over where it sounds), summed; the sum's peak is set on writing. */
std::vector<float> mix (const std::vector<std::string>& wavs, int& rate)
{
    std::vector<float> out;
    for (const auto& wav : wavs)
    {
        const auto sound = Voice::readWav (wav, rate);
        double sum = 0.0;
        std::size_t sounding = 0;
        for (float s : sound)
            if (std::fabs (s) > 1e-4f)
                sum += static_cast<double> (s) * s, ++sounding;
        if (sounding == 0)
            continue;
        const auto gain = static_cast<float> (balancedLevel / std::sqrt (sum / static_cast<double> (sounding)));
        out.resize (std::max (out.size (), sound.size ()), 0.0f);
        for (std::size_t i = 0; i < sound.size (); ++i)
            out[i] += gain * sound[i];
    }
    return out;
}

} // namespace

std::string singInput (const Received& synth, double duration)
{
    std::ostringstream out;
    out.precision (17);
    out << "{\"duration\": " << duration << ", \"notes\": [";
    for (std::size_t i = 0; i < synth.notes.size (); ++i)
    {
        const auto& n = synth.notes[i];
        out << (i ? ",\n" : "\n") << "{\"start\": " << n.startTime << ", \"end\": " << n.endTime
            << ", \"cents\": " << n.pitchCents << ", \"kind\": \""
            << (n.isRest ? "rest" : n.isContinuation ? "cont" : "note") << "\", \"phonemes\": [";
        for (int k = 0; k < n.phonemeCount && k < 8; ++k)
        {
            // An entry is at most eight bytes; it need not end in a zero.
            const char* p = n.phonemes[k];
            out << (k ? ", " : "") << quoted (std::string (p, std::find (p, p + 8, '\0')));
        }
        out << "]}";
    }
    out << "]}\n";
    return out.str ();
}

std::string trackFileName (std::size_t index, const Received& synth)
{
    char number[16];
    std::snprintf (number, sizeof number, "%02zu ", index + 1);
    std::string name = number + synth.track + " - " + synth.slot;
    // A name is one file in the folder: no separators, no control characters.
    for (char& c : name)
        if (c == '/' || c == '\\' || static_cast<unsigned char> (c) < 0x20)
            c = '_';
    return name + ".wav";
}

bool sing (const Outcome& outcome, const SingOptions& options,
           const std::function<void (const std::string&, double)>& progress, std::string& error)
{
    const double duration = songLength (outcome);
    const double timeout = options.timeout > 0.0 ? options.timeout : 30.0 + 0.5 * duration;
    try
    {
        ScratchFolder scratch;
        if (!options.tracksDir.empty ())
            fs::create_directories (options.tracksDir);
        std::vector<std::string> wavs;
        const auto& synths = outcome.synthesisers;
        for (std::size_t i = 0; i < synths.size (); ++i)
        {
            const std::string who = synths[i].track + " / " + synths[i].slot;
            progress ("singing " + who, static_cast<double> (i) / static_cast<double> (synths.size ()));
            const auto input = scratch.path / (std::to_string (i) + ".json");
            std::ofstream (input) << singInput (synths[i], duration);
            const auto wav = options.tracksDir.empty () ? scratch.path / (std::to_string (i) + ".wav")
                                                        : fs::path (options.tracksDir) / trackFileName (i, synths[i]);
            if (!runWorker (options.worker, input.string (), wav.string (),
                            (scratch.path / (std::to_string (i) + ".txt")).string (), timeout, error))
            {
                error = "singing " + who + ": " + error;
                return false;
            }
            wavs.push_back (wav.string ());
        }
        if (!options.mixPath.empty ())
        {
            progress ("mixing", 1.0);
            int rate = Voice::outputRate;
            auto sound = mix (wavs, rate);
            sound.resize (static_cast<std::size_t> (std::lround (duration * rate)), 0.0f);
            Voice::writeWav (options.mixPath, sound, rate, rate, sound.size (), mixPeak);
        }
    }
    catch (const std::exception& e)
    {
        error = e.what ();
        return false;
    }
    return true;
}

} // namespace Workbench
