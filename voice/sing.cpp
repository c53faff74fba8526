// sing: a note list as JSON in, the voice singing it as a WAV file out.
// A process of its own, so that no fault of the engine can take its caller down.

#include "voice/festival_voice.h"
#include "voice/song_json.h"
#include "voice/song_plan.h"
#include "voice/wav_file.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

const char* const usage =
    "usage: sing [options] [SONG.json | -] -o OUT.wav\n"
    "Sings a note list (JSON, from the file or standard input) into a 44.1 kHz 16-bit WAV file.\n"
    "  -o, --output FILE      the WAV file to write (replaced whole, never half-written)\n"
    "  --synthesiser N        from a workbench report (--json), the N-th synthesiser (default 1)\n"
    "  --onsets-before-note   sing onset consonants before the note, so the vowel lands on the beat\n"
    "  --quiet                no warnings\n"
    "  -h, --help             this text\n";

const float outputPeak = 0.89f;  // about -1 dBFS: room for the reconstruction between samples

struct Options
{
    std::string input = "-";
    std::string output;
    int synthesiser = 1;
    bool onsetsBeforeNote = false;
    bool quiet = false;
};

Options parse (int argc, char** argv)
{
    Options o;
    bool haveInput = false;
    for (int i = 1; i < argc; ++i)
    {
        const std::string arg = argv[i];
        const auto value = [&] () -> std::string
        {
            if (i + 1 >= argc)
                throw std::invalid_argument (arg + " needs a value");
            return argv[++i];
        };
        if (arg == "-h" || arg == "--help")
        {
            std::fputs (usage, stdout);
            std::exit (0);
        }
        else if (arg == "-o" || arg == "--output")
            o.output = value ();
        else if (arg == "--synthesiser")
        {
            const std::string n = value ();
            char* end = nullptr;
            const long v = std::strtol (n.c_str (), &end, 10);
            if (n.empty () || *end != '\0' || v < 1 || v > 999)
                throw std::invalid_argument ("--synthesiser wants a number from 1, not \"" + n + "\"");
            o.synthesiser = static_cast<int> (v);
        }
        else if (arg == "--onsets-before-note")
            o.onsetsBeforeNote = true;
        else if (arg == "--quiet")
            o.quiet = true;
        else if (arg.size () > 1 && arg[0] == '-')
            throw std::invalid_argument ("unknown option " + arg);
        else if (!haveInput)
            o.input = arg, haveInput = true;
        else
            throw std::invalid_argument ("one song at a time: \"" + arg + "\" is one too many");
    }
    if (o.output.empty ())
        throw std::invalid_argument ("say where the WAV goes with -o OUT.wav");
    return o;
}

std::string readAll (const std::string& path)
{
    if (path == "-")
        return std::string (std::istreambuf_iterator<char> (std::cin), std::istreambuf_iterator<char> ());
    std::ifstream in (path, std::ios::binary);
    if (!in)
        throw std::runtime_error ("cannot read: " + std::string (std::strerror (errno)));
    std::ostringstream text;
    text << in.rdbuf ();
    return text.str ();
}

} // namespace

int main (int argc, char** argv)
{
    Options options;
    try
    {
        options = parse (argc, argv);
    }
    catch (const std::exception& e)
    {
        std::fprintf (stderr, "sing: %s (see sing --help)\n", e.what ());
        return 1;
    }
    const std::string name = options.input == "-" ? "standard input" : options.input;
    try
    {
        Voice::SongInput song;
        try
        {
            song = Voice::readSongJson (readAll (options.input), options.synthesiser);
        }
        catch (const std::exception& e)
        {
            throw std::runtime_error (name + ": " + e.what ());
        }
        Voice::PlanOptions planOptions;
        planOptions.onsetsBeforeNote = options.onsetsBeforeNote;
        const auto plan = Voice::planSong (song.notes, song.duration, planOptions);
        if (!options.quiet)
            for (const auto& warning : plan.warnings)
                std::fprintf (stderr, "sing: %s: %s\n", name.c_str (), warning.c_str ());

        const auto sound = Voice::FestivalVoice::instance ().render (plan);
        Voice::writeWav (options.output, sound, Voice::FestivalVoice::sampleRate, Voice::outputRate,
                         static_cast<std::size_t> (std::lround (plan.duration * Voice::outputRate)), outputPeak);
    }
    catch (const std::exception& e)
    {
        std::fprintf (stderr, "sing: %s\n", e.what ());
        return 1;
    }
    return 0;
}
