// A whole song through the workbench: the module loaded, the project built,
// every lyric typed in its own host edit, idle passes, undo and redo,
// teardown. Wall time, as a user waits for it. Beside it, a MusicXML score of
// 2,000 notes with words: reading it (syllables joined into typed words), and
// its whole life; and the simulated host's side of that life alone, its calls
// made as the agent's pass makes them.
#include "workbench/cli/session.h"
#include "workbench/loader/module_loader.h"
#include "workbench/loader/module_search.h"
#include "score/midi_song.h"
#include "score/musicxml_reader.h"
#include "songs/generator/compose.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/project.h"
#include "workbench/sim/svs_plugin.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

void WholeSong (benchmark::State& state)
{
    Score::Song song;
    std::string error;
    if (!Score::readMidiSong (Songs::long400 (), song, error))
    {
        state.SkipWithError (error.c_str ());
        return;
    }
    Workbench::Options options;
    options.modulePath = CANTORELA_MODULE_PATH;
    options.undo = static_cast<int> (state.range (0));
    options.redo = options.undo;
    Workbench::Outcome last;
    for (auto _ : state)
    {
        Workbench::Outcome outcome;
        if (!Workbench::run (song, "Long Song", options, outcome, error))
        {
            state.SkipWithError (error.c_str ());
            return;
        }
        last = outcome;
    }
    state.counters["notes"] = static_cast<double> (song.noteCount ());
    state.counters["edits"] = last.timing.lyricEdits;
    state.counters["edits_s"] = last.timing.edits;
    state.counters["idle_s"] = last.timing.idle;
    state.counters["load_s"] = last.timing.load;
    state.counters["host_calls"] = static_cast<double> (last.timing.hostCalls);
}
BENCHMARK (WholeSong)->Arg (0)->Arg (20)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (3);

/** The search for the module when none is named, every place looked at (none holds it here). */
void FindModule (benchmark::State& state)
{
    std::string path, error;
    for (auto _ : state)
        benchmark::DoNotOptimize (Sim::findDefaultModule (path, error));
    state.counters["places"] = static_cast<double> (Sim::defaultModulePlaces ().size ());
}
BENCHMARK (FindModule)->Unit (benchmark::kMicrosecond);

/** The baseline the search comes before: loading the module, entering it and unloading it. */
void LoadModule (benchmark::State& state)
{
    for (auto _ : state)
    {
        Sim::LoadedModule module (CANTORELA_MODULE_PATH);
        benchmark::DoNotOptimize (module.bundleEntry () && module.bundleExit ());
    }
}
BENCHMARK (LoadModule)->Unit (benchmark::kMicrosecond)->UseRealTime ()->Iterations (20);

bool readScore (const std::string& xml, Score::Song& song, std::string& error, bool raw = false)
{
    return Score::readMusicXml (reinterpret_cast<const std::uint8_t*> (xml.data ()), xml.size (), {1, raw}, song,
                               error);
}

/** Argument 1 reads the lyrics raw, each syllable on its note: the difference is what joining them into words costs. */
void ReadScore (benchmark::State& state)
{
    const std::string xml = Songs::twoThousand ();
    Score::Song song;
    std::string error;
    for (auto _ : state)
        if (!readScore (xml, song, error, state.range (0) == 1))
            state.SkipWithError (error.c_str ());
    std::size_t words = 0;
    for (const auto& n : song.tracks.at (0).notes)
        words += !n.lyric.empty ();
    state.counters["notes"] = static_cast<double> (song.noteCount ());
    state.counters["words"] = static_cast<double> (words);
    state.counters["bytes"] = static_cast<double> (xml.size ());
}
BENCHMARK (ReadScore)->Arg (0)->Arg (1)->Unit (benchmark::kMillisecond)->UseRealTime ();

void WholeScore (benchmark::State& state)
{
    const std::string xml = Songs::twoThousand ();
    Workbench::Options options;
    options.modulePath = CANTORELA_MODULE_PATH;
    Workbench::Outcome last;
    std::string error;
    for (auto _ : state)
    {
        Score::Song song;
        Workbench::Outcome outcome;
        if (!readScore (xml, song, error) || !Workbench::run (song, "Two Thousand", options, outcome, error))
        {
            state.SkipWithError (error.c_str ());
            return;
        }
        last = outcome;
    }
    state.counters["edits"] = last.timing.lyricEdits;
    state.counters["edits_s"] = last.timing.edits;
    state.counters["idle_s"] = last.timing.idle;
    state.counters["load_s"] = last.timing.load;
}
BENCHMARK (WholeScore)->Unit (benchmark::kMillisecond)->UseRealTime ()->Iterations (1);

/** The agent's host object as the synthesiser reads it: the pass's records, handed over one by one. */
struct Records : SVS::ISequenceStorage
{
    std::vector<SVS::SVSNote> stored;
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID iid, void** obj) override
    {
        const bool ours = Steinberg::FUnknownPrivate::iidEqual (iid, SVS::ISequenceStorage::iid);
        *obj = ours ? this : nullptr;
        return ours ? Steinberg::kResultOk : Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef () override { return 1; }
    Steinberg::uint32 PLUGIN_API release () override { return 1; }
    Steinberg::tresult PLUGIN_API readSequence (SVS::INoteList* target) override
    {
        for (const auto& n : stored)
            target->addNote (&n);
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API writeSequence (SVS::INoteList*) override { return Steinberg::kResultOk; }
};

/** Bytes the process holds from malloc, mapped blocks included. */
std::size_t heapInUse ()
{
    const auto info = mallinfo2 ();
    return info.uordblks + info.hblkhd;
}

/**
 * The host's side of the score's 1,001 edits, without the agent: each a user's
 * typed word and then, for every one of 2,000 notes, the calls that the agent's
 * pass makes (the read, the record copied into the synthesiser's list, the
 * write-back of "lyrics", "lyph", "phoneme" and "svsn"), the texts the same as
 * the pass before's except the typed note's. The history keeps every edit, as
 * in the life. Counters: time a host call, and the heap the history grew by a
 * pass.
 */
void HostPass (benchmark::State& state)
{
    using namespace Steinberg;
    constexpr int kNotes = 2000;
    Sim::CallLog::setRecording (false);
    Sim::CallLog::clear ();
    const auto heapBefore = heapInUse ();
    int64_t edits = 0;
    {
        Sim::Project project ("Two Thousand");
        auto& track = project.root ().addInstrumentTrack ("Voice");
        auto& part = track.addPart (0.0, kNotes * 0.5 + 1.0);
        for (int i = 0; i < kNotes; ++i)
            part.addNote (i * 0.5, i * 0.5 + 0.5, 60 + i % 12);
        const std::u16string phoneme = u"l ae n t er n";
        std::vector<std::u16string> lyrics (kNotes, u"+");
        ITimeContext* time = &project.time ();
        Records records;
        Sim::SvsPlugin synth ("Voice");
        synth.setHost (&records);
        for (auto _ : state)
        {
            const int typed = static_cast<int> (edits++ % kNotes);
            lyrics[static_cast<std::size_t> (typed)] = u"word" + std::u16string (1, static_cast<char16_t> (u'a' + edits % 26));
            Sim::EditContext& context = project.beginEdit ("type lyric");
            records.stored.clear ();
            INodeIterator* notes = part.getChildren ();
            while (!(notes->isDone () & 1))
            {
                IProjectNode* node = notes->next ();
                INoteEvent* event = nullptr;
                INoteText* text = nullptr;
                node->queryInterface (INoteEvent::iid, reinterpret_cast<void**> (&event));
                node->queryInterface (INoteText::iid, reinterpret_cast<void**> (&text));
                // The read.
                FVariant seen, lyric, phonemeText, stored;
                if (node->hasAttribute ("svsn") == kResultOk)
                    node->getAttribute ("svsn", &seen);
                text->getValue ("lyrics", &lyric);
                text->getValue ("phoneme", &phonemeText);
                if (node->hasAttribute ("lyph") == kResultOk)
                    node->getAttribute ("lyph", &stored);
                benchmark::DoNotOptimize (track.getTimeDomain () + event->getPitch () + part.isMuted ()
                                          + node->isMuted () + time->linearToMusical (node->getStart (time))
                                          + time->linearToMusical (node->getEnd (time)) + part.getContentStart (time));
                SVS::SVSNote record {};
                record.startTime = node->getStart (time);
                records.stored.push_back (record);
                // The write-back.
                auto* anchor = text->resolveAnchor (&part.anchor ());
                const auto& word = lyrics[records.stored.size () - 1];
                const FVariant wordValue (reinterpret_cast<const char16*> (word.c_str ()));
                const FVariant phonemeValue (reinterpret_cast<const char16*> (phoneme.c_str ()));
                const FVariant one (static_cast<int64> (1));
                text->setValue ("lyrics", &wordValue, static_cast<IEditAnchor*> (anchor), &context);
                node->setAttribute ("lyph", &wordValue, 1);
                text->setValue ("phoneme", &phonemeValue, static_cast<IEditAnchor*> (anchor), &context);
                node->setAttribute ("svsn", &one, 1);
                text->release ();
                event->release ();
            }
            notes->release ();
            synth.sequenceChanged ();  // reads the records back
            project.endEdit ();
        }
        state.counters["host_calls_ns"] = benchmark::Counter (static_cast<double> (Sim::CallLog::hostCalls ()),
                                                              benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
        state.counters["history_KiB_edit"] =
            static_cast<double> (heapInUse () - heapBefore) / 1024.0 / static_cast<double> (edits);
        project.clearHistory ();
    }
    state.counters["host_calls_edit"] = static_cast<double> (Sim::CallLog::hostCalls ()) / static_cast<double> (edits);
}
BENCHMARK (HostPass)->Unit (benchmark::kMillisecond)->Iterations (1001);

} // namespace

BENCHMARK_MAIN ();
