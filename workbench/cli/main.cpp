// workbench: reads songs, loads the agent module as a host does, builds a
// project from each song, types its lyrics, and shows what each synthesiser received.
#include "workbench/cli/options.h"
#include "workbench/cli/progress.h"
#include "workbench/cli/song_run.h"
#include "workbench/loader/module_search.h"

#include "score/file_bytes.h"

#include <cstdio>
#include <filesystem>
#include <string>

#ifndef CANTORELA_VERSION
#define CANTORELA_VERSION "unknown"
#endif
#ifndef CANTORELA_SING_PATH
#define CANTORELA_SING_PATH "sing"
#endif

namespace {

int fail (const std::string& message, int code = 1)
{
    std::fprintf (stderr, "workbench: %s\n", message.c_str ());
    return code;
}

/** A wrong command line: the reason comes last, where the eye lands. */
int usageError (const std::string& reason)
{
    std::fprintf (stderr, "%s\n", Workbench::usageHint);
    return fail (reason, 2);
}

/** The sing worker: beside this program where it is installed, else the one this build made. */
std::string defaultSingWorker ()
{
    const std::string folder = Sim::programFolder ();
    std::error_code ignored;
    if (!folder.empty () && std::filesystem::exists (std::filesystem::u8path (folder) / "sing", ignored))
        return (std::filesystem::u8path (folder) / "sing").u8string ();
    return CANTORELA_SING_PATH;
}

/** The lyric sheet, from the command line, a file, or standard input. */
bool readSheet (const Workbench::CommandLine& command, std::string& sheet, std::string& error)
{
    sheet = command.lyrics;
    if (command.lyricsFile.empty ())
        return true;
    std::vector<std::uint8_t> bytes;
    if (command.lyricsFile == "-" ? !Score::readStandardInput (bytes, error)
                                  : !Score::readFileBytes (command.lyricsFile, bytes, error))
        return false;
    sheet.assign (bytes.begin (), bytes.end ());
    return true;
}

} // namespace

int main (int argc, char** argv)
{
    Workbench::CommandLine command;
    std::string error;
    if (!Workbench::parseCommandLine (argc - 1, argv + 1, command, error))
        return usageError (error);
    if (command.help)
    {
        std::fputs (Workbench::usage ().c_str (), stdout);
        return 0;
    }
    if (command.version)
    {
        std::puts ("workbench " CANTORELA_VERSION);
        return 0;
    }
    if (!command.lyricsTrack.empty () && command.lyrics.empty () && command.lyricsFile.empty ())
        return usageError ("--lyrics-track names the track for --lyrics or --lyrics-file, and neither is given");
    if (command.run.modulePath.empty () && !Sim::findDefaultModule (command.run.modulePath, error))
        return fail (error);

    std::vector<Workbench::SongJob> jobs;
    int status = 1;
    if (!Workbench::planJobs (command, jobs, error, status))
        return status == 2 ? usageError (error) : fail (error);
    // Before any run: a run takes seconds, a wrong path should not cost them.
    std::string sheet;
    if (!Workbench::checkJobs (command, jobs, error) || !readSheet (command, sheet, error))
        return fail (error);

    // Long work draws a bar on a terminal's standard error; it is cleared before anything is printed.
    Workbench::Progress progress (Workbench::Progress::standardErrorIsTerminal ());
    command.run.progress = [&progress] (const std::string& step, double fraction) { progress.step (step, fraction); };
    if ((command.sing || command.singTracks) && command.singWorker.empty ())
        command.singWorker = defaultSingWorker ();
    std::vector<std::string> failed;
    for (const auto& job : jobs)
        if (!Workbench::singSong (job, command, sheet, stderr, progress, error))
        {
            fail (error);
            failed.push_back (job.name);
        }
    if (jobs.size () > 1)
    {
        std::string names;
        for (const auto& f : failed)
            names += (names.empty () ? " (" : ", ") + f;
        std::fprintf (stderr, "workbench: %zu songs: %zu sung, %zu failed%s\n", jobs.size (), jobs.size () - failed.size (),
                      failed.size (), failed.empty () ? "" : (names + ")").c_str ());
    }
    return failed.empty () ? 0 : 1;
}
