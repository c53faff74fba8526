// Singing from the workbench: one WAV per synthesiser and the mix, all as long as the song, and a
// worker that dies, hangs or fails turned into one clear error with nothing half-written.
#include "score/midi_file.h"
#include "workbench/cli/progress.h"
#include "workbench/cli/singing.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

struct Ran
{
    int status = -1;
    std::string err;
};

Ran workbench (const std::string& args, const fs::path& dir)
{
    const std::string command = std::string (WORKBENCH_EXE) + " " + args + " >/dev/null 2>" + (dir / "err").string ();
    const int raw = std::system (command.c_str ());
    std::stringstream err;
    err << std::ifstream (dir / "err").rdbuf ();
    fs::remove (dir / "err");
    return {WIFEXITED (raw) ? WEXITSTATUS (raw) : -1, err.str ()};
}

sf_count_t frames (const fs::path& wav, double* level = nullptr)
{
    SF_INFO info {};
    SNDFILE* f = sf_open (wav.c_str (), SFM_READ, &info);
    if (f == nullptr)
        return -1;
    std::vector<float> samples (static_cast<std::size_t> (info.frames));
    sf_readf_float (f, samples.data (), info.frames);
    sf_close (f);
    double sum = 0.0;
    for (float s : samples)
        sum += static_cast<double> (s) * s;
    if (level)
        *level = samples.empty () ? 0.0 : std::sqrt (sum / static_cast<double> (samples.size ()));
    return info.samplerate == 44100 && info.channels == 1 ? info.frames : -1;
}

std::ptrdiff_t count (const std::string& text, const std::string& what)
{
    std::ptrdiff_t n = 0;
    for (auto at = text.find (what); at != std::string::npos; at = text.find (what, at + 1))
        ++n;
    return n;
}

struct Folder
{
    Folder () { fs::create_directories (path); }
    ~Folder () { fs::remove_all (path); }
    fs::path path = fs::temp_directory_path () / ("wb_sing_" + std::to_string (getpid ()));
};

} // namespace

TEST (WorkbenchSinging, OneFilePerSynthesiserAndTheMixAllAsLongAsTheSong)
{
    Folder dir;
    // Two tracks that end apart: "Short" at 0.5 s, "Long" at 2.5 s (120 beats a minute).
    using E = Score::MidiEvent;
    Score::MidiFile file;
    file.tracks.push_back ({{{0, E::TrackName, 0, 0, 0, 0, "Short"}, {0, E::Lyric, 0, 0, 0, 0, "la"},
                             {0, E::NoteOn, 0, 60, 90, 0, ""}, {480, E::NoteOff, 0, 60, 0, 0, ""}}});
    file.tracks.push_back ({{{0, E::TrackName, 0, 0, 0, 0, "Long"}, {0, E::Lyric, 0, 0, 0, 0, "a"},
                             {0, E::NoteOn, 0, 64, 90, 0, ""}, {480, E::NoteOff, 0, 64, 0, 0, ""},
                             {1920, E::Lyric, 0, 0, 0, 0, "no"}, {1920, E::NoteOn, 0, 67, 90, 0, ""},
                             {2400, E::NoteOff, 0, 67, 0, 0, ""}}});
    const auto bytes = Score::writeMidi (file);
    std::ofstream (dir.path / "two.mid", std::ios::binary)
        .write (reinterpret_cast<const char*> (bytes.data ()), static_cast<std::streamsize> (bytes.size ()));

    // A slow worker makes the run pass a second: still no progress bar into a pipe.
    const auto worker = dir.path / "slow.sh";
    std::ofstream (worker) << "#!/bin/sh\nsleep 0.6\nexec " << SING_EXE << " \"$@\"\n";
    fs::permissions (worker, fs::perms::owner_all);
    const Ran run = workbench ((dir.path / "two.mid").string () + " --sing " + (dir.path / "mix.wav").string ()
                                   + " --sing-tracks " + (dir.path / "tracks").string () + " --sing-worker " + worker.string (),
                               dir.path);
    ASSERT_EQ (run.status, 0) << run.err;
    EXPECT_EQ (run.err.find ('\r'), std::string::npos) << run.err;
    // The song ends with the longer track's closing rest, a second after its last note.
    const sf_count_t song = 3 * 44100 + 44100 / 2;
    for (const char* name : {"01 Short - Slot 1.wav", "02 Long - Slot 1.wav"})
    {
        double level = 0.0;
        EXPECT_EQ (frames (dir.path / "tracks" / name, &level), song) << name;
        EXPECT_GT (level, 0.01) << name;
    }
    EXPECT_EQ (std::distance (fs::directory_iterator (dir.path / "tracks"), fs::directory_iterator ()), 2);
    EXPECT_EQ (frames (dir.path / "mix.wav"), song);
}

TEST (WorkbenchSinging, AWorkerThatFailsIsOneErrorAndNoFile)
{
    const std::pair<const char*, const char*> workers[] = {
        {"kill -9 $$", "singing Lead / Slot 1: the sing worker died (signal 9)"},
        {"exec sleep 30", "singing Lead / Slot 1: the sing worker did not finish within 0.5 s and was stopped"},
        {"echo 'sing: no voice here' >&2; exit 1", "singing Lead / Slot 1: sing: no voice here"},
        {"printf 'RIFF' > \"$4\"", "cannot read"},  // "succeeds" with a broken file
    };
    for (const auto& [script, message] : workers)
    {
        Folder dir;
        const auto worker = dir.path / "worker.sh";
        std::ofstream (worker) << "#!/bin/sh\n" << script << "\n";
        fs::permissions (worker, fs::perms::owner_all);
        const Ran run = workbench (std::string (SONGS_DIR) + "/duet.mid --sing-timeout 0.5 --sing-worker " + worker.string ()
                                       + " --sing " + (dir.path / "mix.wav").string (),
                                   dir.path);
        EXPECT_EQ (run.status, 1) << script;
        EXPECT_NE (run.err.find (message), std::string::npos) << run.err;
        // One line of error beside the notes on how the words were read.
        EXPECT_EQ (std::count (run.err.begin (), run.err.end (), '\n') - count (run.err, "workbench: note: "), 1) << run.err;
        EXPECT_FALSE (fs::exists (dir.path / "mix.wav")) << script;
    }
}

TEST (WorkbenchSinging, NamesAndProgressLine)
{
    Workbench::Received synth;
    synth.track = "Alto/Tenor\t2";
    synth.slot = "Slot 1";
    EXPECT_EQ (Workbench::trackFileName (11, synth), "12 Alto_Tenor_2 - Slot 1.wav");
    EXPECT_EQ (Workbench::progressLine ("typing the words", 0.5, 10), "[#####.....]  50%  typing the words");
    EXPECT_EQ (Workbench::progressLine ("mixing", 1.7, 4), "[####] 100%  mixing");
}
