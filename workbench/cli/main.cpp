// workbench: loads the agent module as a host does, builds a project from a
// MIDI song, types its lyrics, and shows what each synthesiser received.
#include "workbench/cli/piano_roll.h"
#include "workbench/cli/report.h"
#include "workbench/cli/session.h"
#include "workbench/cli/song_file.h"
#include "score/file_bytes.h"
#include "score/lay_lyrics.h"
#include "score/midi_song.h"
#include "score/song_reader.h"
#include "songs/generator/compose.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#ifndef CANTORELA_MODULE_PATH
#define CANTORELA_MODULE_PATH "CantorelaBetaAgent.vst3"
#endif

namespace {

const char* usage =
    "usage: workbench [SONG] [options]\n"
    "  Runs the agent module on a song (the built-in example when no file is given)\n"
    "  and prints the note list each synthesiser received. SONG is a MIDI file\n"
    "  (.mid, .kar) or a MusicXML score (.musicxml, .xml, .mxl).\n"
    "options:\n"
    "  --module PATH        the module bundle or .so to load (default: the one in the build folder)\n"
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
    "  -h, --help           this text\n";

bool count (const char* text, int& out)
{
    char* end = nullptr;
    const long v = std::strtol (text, &end, 10);
    if (end == text || *end != '\0' || v < 0 || v > 1000000)
        return false;
    out = static_cast<int> (v);
    return true;
}

int fail (const std::string& message, int code = 1)
{
    std::fprintf (stderr, "workbench: %s\n", message.c_str ());
    return code;
}

} // namespace

int main (int argc, char** argv)
{
    Workbench::Options options;
    options.modulePath = CANTORELA_MODULE_PATH;
    std::string songPath, rollPath, midiPath, lyrics, lyricsFile;
    bool asJson = false, timing = false;
    Score::ReadOptions reading;

    for (int i = 1; i < argc; ++i)
    {
        const std::string arg = argv[i];
        auto value = [&] () -> const char* { return i + 1 < argc ? argv[++i] : nullptr; };
        if (arg == "-h" || arg == "--help")
        {
            std::fputs (usage, stdout);
            return 0;
        }
        else if (arg == "--json")
            asJson = true;
        else if (arg == "--timing")
            timing = true;
        else if (arg == "--paced")
            options.paced = true;
        else if (arg == "--show-editor")
            options.showEditor = true;
        else if (arg == "--raw-lyrics")
            reading.rawLyrics = true;
        else if (arg == "--module" || arg == "--piano-roll" || arg == "--write-midi" || arg == "--lyrics-file")
        {
            const char* v = value ();
            if (!v || !*v)
                return fail (arg + " needs a path\n" + usage, 2);
            (arg == "--module"       ? options.modulePath
             : arg == "--piano-roll" ? rollPath
             : arg == "--write-midi" ? midiPath
                                     : lyricsFile) = v;
        }
        else if (arg == "--lyrics")
        {
            const char* v = value ();
            if (!v)
                return fail (arg + " needs the words\n" + usage, 2);
            lyrics = v;
        }
        else if (arg == "--undo" || arg == "--redo" || arg == "--idle" || arg == "--editor-seconds"
                 || arg == "--verse")
        {
            const char* v = value ();
            int n = 0;
            const int least = arg == "--verse" ? 1 : 0;
            if (!v || !count (v, n) || n < least)
                return fail (arg + " needs a whole number from " + std::to_string (least) + " on\n" + usage, 2);
            if (arg == "--undo")
                options.undo = n;
            else if (arg == "--redo")
                options.redo = n;
            else if (arg == "--idle")
                options.idlePasses = n;
            else if (arg == "--verse")
                reading.verse = n;
            else
                options.editorSeconds = n;
        }
        else if (!arg.empty () && arg[0] == '-')
            return fail ("unknown option " + arg + "\n" + usage, 2);
        else if (songPath.empty ())
            songPath = arg;
        else
            return fail (std::string ("one song at a time\n") + usage, 2);
    }

    std::string error;
    std::string name;
    Score::Song song;
    if (songPath.empty ())
    {
        // Through the bytes, so that the example takes the same road as a file.
        const auto bytes = Score::writeMidi (Songs::morning ());
        Score::MidiFile file;
        name = "Morning Song (built-in example)";
        if (!Score::parseMidi (bytes.data (), bytes.size (), file, error) || !Score::readMidiSong (file, song, error, reading))
            return fail ("the built-in example: " + error);
    }
    else
    {
        if (!Score::readSong (songPath, reading, song, error))
            return fail (error);
        const auto slash = songPath.find_last_of ('/');
        name = slash == std::string::npos ? songPath : songPath.substr (slash + 1);
    }
    if (!lyricsFile.empty ())
    {
        std::vector<std::uint8_t> bytes;
        if (!Score::readFileBytes (lyricsFile, bytes, error))
            return fail (error);
        lyrics.assign (bytes.begin (), bytes.end ());
    }
    if (!lyrics.empty ())
        Score::layLyrics (lyrics, song);
    for (const auto& w : song.warnings)
        std::fprintf (stderr, "workbench: note: %s\n", w.c_str ());

    Workbench::Outcome outcome;
    if (!Workbench::run (song, name, options, outcome, error))
        return fail (error);
    for (const auto& n : outcome.notices)
        std::fprintf (stderr, "workbench: note: %s\n", n.c_str ());

    const std::string text = asJson ? Workbench::json (name, outcome) : Workbench::table (name, outcome);
    std::fwrite (text.data (), 1, text.size (), stdout);
    std::fflush (stdout);
    if (timing)
        std::fputs (Workbench::timingText (outcome).c_str (), stderr);

    if (!rollPath.empty () && !Workbench::writePianoRoll (outcome, name, rollPath, error))
        return fail (error);
    if (!midiPath.empty () && !Workbench::writeSongFile (name, outcome, midiPath, error))
        return fail (error);
    return 0;
}
