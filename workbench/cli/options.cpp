#include "workbench/cli/options.h"

#include <cstdlib>

namespace Workbench {

const char* const usage =
    "usage: workbench [SONG] [options]\n"
    "  Runs the agent module on a song (the built-in example when no file is given)\n"
    "  and prints the note list each synthesiser received. SONG is a MIDI file\n"
    "  (.mid, .kar) or a MusicXML score (.musicxml, .xml, .mxl).\n"
    "options:\n"
    "  --module PATH        the module bundle or .so to load (default: beside the program, else in the VST3 folders)\n"
    "  --json               print JSON instead of the table\n"
    "  --piano-roll FILE    also draw the received notes into a PNG\n"
    "  --write-midi FILE    also write the song as the host's notes stand at the end, lyrics written back\n"
    "  --undo N             undo N host edits after the lyrics are typed\n"
    "  --redo N             then redo N of them\n"
    "  --idle N             idle passes after the edits and after undo/redo (default 2)\n"
    "  --paced              make each idle pass a real idle call, waiting out the agent's 1 s interval\n"
    "  --show-editor        open the agent's window (needs a display) for --editor-seconds (default 10)\n"
    "  --timing             print how long each stage took, on standard error\n"
    "  --verse N            sing verse N of a score's lyrics (default 1)\n"
    "  --raw-lyrics         type each lyric text on its note as written, not joined into words\n"
    "  --lyrics TEXT        lay these words over the tracks that have none\n"
    "  --lyrics-file FILE   the same, with the words read from a file\n"
    "  --sing FILE.wav      sing every synthesiser's notes, mixed, into a WAV (Linux)\n"
    "  --sing-tracks DIR    one WAV per synthesiser in DIR, \"01 Track - Slot 1.wav\" in the report's order\n"
    "  --sing-worker PATH   the sing program to run (default: the one in the build folder)\n"
    "  --sing-timeout S     seconds one synthesiser may take to sing (default 30 and half the song's length)\n"
    "  -h, --help           this text\n";

namespace {

bool count (const char* text, int& out)
{
    char* end = nullptr;
    const long v = std::strtol (text, &end, 10);
    if (end == text || *end != '\0' || v < 0 || v > 1000000)
        return false;
    out = static_cast<int> (v);
    return true;
}

} // namespace

bool parseCommandLine (int argc, const char* const* argv, CommandLine& out, std::string& error)
{
    for (int i = 0; i < argc; ++i)
    {
        const std::string arg = argv[i];
        auto value = [&] () -> const char* { return i + 1 < argc ? argv[++i] : nullptr; };
        if (arg == "-h" || arg == "--help")
        {
            out.help = true;
            return true;
        }
        else if (arg == "--json")
            out.asJson = true;
        else if (arg == "--timing")
            out.timing = true;
        else if (arg == "--paced")
            out.run.paced = true;
        else if (arg == "--show-editor")
            out.run.showEditor = true;
        else if (arg == "--raw-lyrics")
            out.reading.rawLyrics = true;
        else if (arg == "--module" || arg == "--piano-roll" || arg == "--write-midi" || arg == "--lyrics-file"
                 || arg == "--sing" || arg == "--sing-tracks" || arg == "--sing-worker")
        {
            const char* v = value ();
            if (!v || !*v)
            {
                error = arg + " needs a path";
                return false;
            }
            (arg == "--module"        ? out.run.modulePath
             : arg == "--piano-roll"  ? out.rollPath
             : arg == "--write-midi"  ? out.midiPath
             : arg == "--sing"        ? out.singPath
             : arg == "--sing-tracks" ? out.singTracksDir
             : arg == "--sing-worker" ? out.singWorker
                                      : out.lyricsFile) = v;
        }
        else if (arg == "--sing-timeout")
        {
            const char* v = value ();
            char* end = nullptr;
            const double seconds = v ? std::strtod (v, &end) : 0.0;
            if (!v || end == v || *end != '\0' || !(seconds > 0.0 && seconds <= 86400.0))
            {
                error = arg + " needs a number of seconds above 0";
                return false;
            }
            out.singTimeout = seconds;
        }
        else if (arg == "--lyrics")
        {
            const char* v = value ();
            if (!v)
            {
                error = arg + " needs the words";
                return false;
            }
            out.lyrics = v;
        }
        else if (arg == "--undo" || arg == "--redo" || arg == "--idle" || arg == "--editor-seconds"
                 || arg == "--verse")
        {
            const char* v = value ();
            int n = 0;
            const int least = arg == "--verse" ? 1 : 0;
            if (!v || !count (v, n) || n < least)
            {
                error = arg + " needs a whole number from " + std::to_string (least) + " on";
                return false;
            }
            if (arg == "--undo")
                out.run.undo = n;
            else if (arg == "--redo")
                out.run.redo = n;
            else if (arg == "--idle")
                out.run.idlePasses = n;
            else if (arg == "--verse")
                out.reading.verse = n;
            else
                out.run.editorSeconds = n;
        }
        else if (!arg.empty () && arg[0] == '-')
        {
            error = "unknown option " + arg;
            return false;
        }
        else if (out.songPath.empty ())
            out.songPath = arg;
        else
        {
            error = "one song at a time";
            return false;
        }
    }
    return true;
}

} // namespace Workbench
