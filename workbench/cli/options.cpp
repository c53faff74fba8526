#include "workbench/cli/options.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Workbench {

namespace {

enum class Takes
{
    Nothing,
    Input,   ///< a file to read; "-" is standard input where the option says so
    Output,  ///< a file to write: never "-" nor anything that looks like an option
    Count,
    Text,
};

using Apply = bool (*) (CommandLine&, const std::string& value, std::string& error);

/** One option: its names, what it takes, its line of help, and what it sets. */
struct Option
{
    const char* name;
    const char* alias;  ///< a short name, or null
    Takes takes;
    const char* value;  ///< how the help names the value
    const char* help;
    Apply apply;
    bool switchUnderOut = false;  ///< with --out it names no file: each song's goes into that folder
};

bool count (const std::string& name, const std::string& text, int least, int& out, std::string& error)
{
    char* end = nullptr;
    const long v = std::strtol (text.c_str (), &end, 10);
    if (text.empty () || *end != '\0' || v < least || v > 1000000)
    {
        error = name + " needs a whole number from " + std::to_string (least) + " on, not \"" + text + "\"";
        return false;
    }
    out = static_cast<int> (v);
    return true;
}

// New options go into this table; the parser and the help read it.
const Option options[] = {
    {"--json", nullptr, Takes::Nothing, nullptr, "print JSON (docs/workbench-output.schema.json) instead of the table",
     [] (CommandLine& c, const std::string&, std::string&) { return c.asJson = true; }},
    {"--piano-roll", nullptr, Takes::Output, "FILE.png",
     "also draw the received notes into a PNG; a long song takes pages FILE-1.png, FILE-2.png, ...",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.roll = true;
         c.rollPath = v;
         return true;
     },
     true},
    {"--write-midi", nullptr, Takes::Output, "FILE.mid",
     "also write the song as the host's notes stand at the end, lyrics written back",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.midi = true;
         c.midiPath = v;
         return true;
     },
     true},
    {"--midi-lyrics", nullptr, Takes::Text, "host|plain",
     "lyric events of --write-midi: the host's word[hint] (default), or plain syllables\n"
     "                       with hyphens, for other programs",
     [] (CommandLine& c, const std::string& v, std::string& e) {
         if (v != "host" && v != "plain")
         {
             e = "--midi-lyrics takes host or plain, not \"" + v + "\"";
             return false;
         }
         c.plainMidiLyrics = v == "plain";
         return true;
     }},
    {"--out", nullptr, Takes::Output, "DIR",
     "write each song's report into DIR as NAME.txt or NAME.json; --piano-roll and --write-midi\n"
     "                       then take no file name and write NAME.png and NAME.sung.mid",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.outDir = v;
         return true;
     }},
    {"--undo", nullptr, Takes::Count, "N", "undo N host edits after the lyrics are typed",
     [] (CommandLine& c, const std::string& v, std::string& e) { return count ("--undo", v, 0, c.run.undo, e); }},
    {"--redo", nullptr, Takes::Count, "N", "then redo N of them",
     [] (CommandLine& c, const std::string& v, std::string& e) { return count ("--redo", v, 0, c.run.redo, e); }},
    {"--idle", nullptr, Takes::Count, "N", "idle passes after the edits and after undo/redo (default 2)",
     [] (CommandLine& c, const std::string& v, std::string& e) {
         return count ("--idle", v, 0, c.run.idlePasses, e);
     }},
    {"--paced", nullptr, Takes::Nothing, nullptr,
     "make each idle pass a real idle call, waiting out the agent's 1 s interval",
     [] (CommandLine& c, const std::string&, std::string&) { return c.run.paced = true; }},
    {"--verse", nullptr, Takes::Count, "N", "sing verse N of a score's lyrics (default 1)",
     [] (CommandLine& c, const std::string& v, std::string& e) { return count ("--verse", v, 1, c.reading.verse, e); }},
    {"--raw-lyrics", nullptr, Takes::Nothing, nullptr, "type each lyric text on its note as written, not joined into words",
     [] (CommandLine& c, const std::string&, std::string&) { return c.reading.rawLyrics = true; }},
    {"--lyrics", nullptr, Takes::Text, "TEXT",
     "lay a lyric sheet over the tracks without words (won-der: two notes; word_ or _: one more)",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.lyrics = v;
         return true;
     }},
    {"--lyrics-file", nullptr, Takes::Input, "FILE", "the same, with the sheet read from a file (- : standard input)",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.lyricsFile = v;
         return true;
     }},
    {"--lyrics-track", nullptr, Takes::Text, "NAME", "lay the lyrics over this track, whether it has words or not",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.lyricsTrack = v;
         return true;
     }},
    {"--all-tracks", nullptr, Takes::Nothing, nullptr,
     "sing the tracks without words too (as \"ah\"), when other tracks have words",
     [] (CommandLine& c, const std::string&, std::string&) { return c.allTracks = true; }},
    {"--sing", nullptr, Takes::Output, "FILE.wav", "sing every synthesiser's notes, mixed, into a WAV (Linux)",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.sing = true;
         c.singPath = v;
         return true;
     },
     true},
    {"--sing-tracks", nullptr, Takes::Output, "DIR",
     "one WAV per synthesiser in DIR, \"01 Track - Slot 1.wav\" in the report's order; with\n"
     "                       --out it takes no folder name and writes into NAME.tracks",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.singTracks = true;
         c.singTracksDir = v;
         return true;
     },
     true},
    {"--sing-worker", nullptr, Takes::Input, "PATH", "the sing program to run (default: beside the workbench, else the build's)",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.singWorker = v;
         return true;
     }},
    {"--sing-timeout", nullptr, Takes::Text, "S",
     "seconds one synthesiser may take to sing (default 30 and half the song's length)",
     [] (CommandLine& c, const std::string& v, std::string& e) {
         char* end = nullptr;
         const double seconds = std::strtod (v.c_str (), &end);
         if (v.empty () || *end != '\0' || !(seconds > 0.0 && seconds <= 86400.0))
         {
             e = "--sing-timeout needs a number of seconds above 0, not \"" + v + "\"";
             return false;
         }
         c.singTimeout = seconds;
         return true;
     }},
    {"--module", nullptr, Takes::Input, "PATH", "the module bundle or .so to load (default: beside the program, else in the VST3 folders)",
     [] (CommandLine& c, const std::string& v, std::string&) {
         c.run.modulePath = v;
         return true;
     }},
    {"--show-editor", nullptr, Takes::Nothing, nullptr, "open the agent's window (needs a display) for --editor-seconds",
     [] (CommandLine& c, const std::string&, std::string&) { return c.run.showEditor = true; }},
    {"--editor-seconds", nullptr, Takes::Count, "S", "how long the window stays open (default 10)",
     [] (CommandLine& c, const std::string& v, std::string& e) {
         int s = 0;
         if (!count ("--editor-seconds", v, 0, s, e))
             return false;
         c.run.editorSeconds = s;
         return true;
     }},
    {"--timing", nullptr, Takes::Nothing, nullptr, "print how long each stage took, on standard error",
     [] (CommandLine& c, const std::string&, std::string&) { return c.timing = true; }},
    {"--version", nullptr, Takes::Nothing, nullptr, "the workbench's version",
     [] (CommandLine& c, const std::string&, std::string&) { return c.version = true; }},
    {"--help", "-h", Takes::Nothing, nullptr, "this text",
     [] (CommandLine& c, const std::string&, std::string&) { return c.help = true; }},
};

const Option* find (const std::string& name)
{
    for (const auto& o : options)
        if (name == o.name || (o.alias && name == o.alias))
            return &o;
    return nullptr;
}

/** A value that the user surely meant as the next option, or as no file at all. */
bool refused (const Option& o, const std::string& value, std::string& error)
{
    const std::string what = o.takes == Takes::Count ? "a number" : o.takes == Takes::Text ? std::string ("a ") + o.value
                                                                                            : "a file name";
    if (value.empty () && o.takes != Takes::Text)
        error = std::string (o.name) + " needs " + what;
    else if (find (value.substr (0, value.find ('='))))
        error = std::string (o.name) + " needs " + what + ", and " + value + " is an option";
    else if ((o.takes == Takes::Output && value[0] == '-')
             || (o.takes == Takes::Input && value[0] == '-' && value != "-"))
        error = std::string (o.name) + " needs " + what + ", and " + value
                + " looks like an option (write ./" + value + " for a file of that name)";
    else
        return false;
    return true;
}

} // namespace

const char* const usageHint = "usage: workbench [SONG|FOLDER|-]... [options]   (workbench --help for more)";

std::string usage ()
{
    std::string out =
        "usage: workbench [SONG|FOLDER|-]... [options]\n"
        "  Runs the agent module on each song (the built-in example when none is given)\n"
        "  and prints the note list each synthesiser received. A SONG is a MIDI file\n"
        "  (.mid, .kar) or a MusicXML score (.musicxml, .xml, .mxl); a FOLDER gives\n"
        "  every song in it; - reads one from standard input.\n"
        "options (a value follows as the next argument or after =, as in --undo=2):\n";
    for (const auto& o : options)
    {
        std::string names = std::string ("  ") + (o.alias ? std::string (o.alias) + ", " : "") + o.name;
        if (o.value)
            names += std::string (" ") + o.value;
        // A long name gets a line of its own, so that the help stays in one column.
        names += names.size () < 22 ? std::string (22 - names.size (), ' ') : "\n" + std::string (22, ' ');
        out += names + " " + o.help + "\n";
    }
    out += "Exit status: 0 when every song was sung, 1 when one failed, 2 for a wrong command line.\n";
    return out;
}

bool parseCommandLine (int argc, const char* const* argv, CommandLine& out, std::string& error)
{
    // With --out the file options become switches, wherever --out stands.
    bool withOut = false;
    for (int i = 0; i < argc && std::strcmp (argv[i], "--") != 0; ++i)
        withOut = withOut || std::strcmp (argv[i], "--out") == 0 || std::strncmp (argv[i], "--out=", 6) == 0;

    bool optionsEnded = false;
    for (int i = 0; i < argc; ++i)
    {
        const std::string arg = argv[i];
        if (optionsEnded || arg == "-" || arg.empty () || arg[0] != '-')
        {
            out.songs.push_back (arg);
            continue;
        }
        if (arg == "--")
        {
            optionsEnded = true;
            continue;
        }
        const auto eq = arg.find ('=');
        const std::string name = arg.substr (0, eq);
        const Option* o = find (name);
        if (!o)
        {
            error = "unknown option " + name;
            return false;
        }
        const bool takesValue = o->takes != Takes::Nothing && !(withOut && o->switchUnderOut);
        std::string value;
        if (eq != std::string::npos)
        {
            if (!takesValue)
            {
                error = std::string (o->name) + (o->switchUnderOut ? " takes no file name with --out: each song's goes into that folder"
                                                                   : " takes no value");
                return false;
            }
            value = arg.substr (eq + 1);
        }
        else if (takesValue)
        {
            if (i + 1 >= argc)
            {
                error = std::string (o->name) + " needs " + (o->takes == Takes::Count ? "a number"
                                                             : o->takes == Takes::Text ? std::string ("a ") + o->value
                                                                                       : "a file name");
                return false;
            }
            value = argv[++i];
        }
        if (takesValue && refused (*o, value, error))
            return false;
        if (!o->apply (out, value, error))
            return false;
    }
    return true;
}

} // namespace Workbench
