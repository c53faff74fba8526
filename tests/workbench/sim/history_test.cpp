// The host's history against a plain model of it: every change journaled as
// copies of before and after. Edits write back every note the way the agent's
// passes do (the same texts again, a few new ones), with changes outside any
// edit, undo, redo and cut-off redo in between.
#include "fakes.h"

#include "workbench/sim/call_log.h"
#include "workbench/sim/note.h"
#include "workbench/sim/part.h"
#include "workbench/sim/project.h"
#include "workbench/sim/track.h"

#include <array>
#include <map>
#include <optional>
#include <random>
#include <thread>

namespace {

using namespace Steinberg;

struct Model
{
    using Key = std::pair<int, std::string>;  // note, key
    struct Record
    {
        Key key;
        std::optional<std::string> before, after;
    };
    std::map<Key, std::optional<std::string>> state;
    std::vector<std::vector<Record>> history;
    std::size_t cursor = 0;
};

class HistoryTest : public SimTest::Fixture
{
protected:
    Sim::Project project {"Song"};
    Sim::Part& part = project.root ().addInstrumentTrack ("V").addPart (0, 64);
    std::vector<Sim::Note*> notes;
    Model model;
    std::vector<Model::Record>* open = nullptr;

    std::optional<std::string> held (int n, const std::string& key) const
    {
        const Sim::Note& note = *notes[static_cast<std::size_t> (n)];
        if (key == "lyph")
            return note.hasAttr (key) ? std::optional<std::string> (note.attrText (key)) : std::nullopt;
        return note.hasText (key) ? std::optional<std::string> (note.text (key)) : std::nullopt;
    }

    /** Sets (or, with nullopt, removes) a note's text or "lyph", in the host and in the model. */
    void write (int n, const std::string& key, const std::optional<std::string>& to)
    {
        Sim::Note& note = *notes[static_cast<std::size_t> (n)];
        const auto before = model.state[{n, key}];
        if (key == "lyph")
            to ? note.setAttr (key, Sim::Value::text (*to)) : note.removeAttr (key);
        else if (!to)
            note.removeText (key);
        else
        {
            // Through the agent's entry: the text compared with what the note holds.
            const std::u16string wide (to->begin (), to->end ());
            const FVariant v (reinterpret_cast<const char16*> (wide.c_str ()));
            note.setValue (key.c_str (), &v, nullptr, nullptr);
        }
        model.state[{n, key}] = to;
        if (open)
            open->push_back ({{n, key}, before, to});
    }

    /** The newest edit's journal, each change as "before>after", beside the model's. */
    void expectJournalled (const std::string& when)
    {
        auto text = [] (const Sim::Slot& s) { return s.present () ? s.value ().toString () : std::string ("-"); };
        auto text2 = [] (const std::optional<std::string>& s) { return s ? *s : std::string ("-"); };
        std::vector<std::string> host, plain;
        project.historyEntry (project.historySize () - 1)->journal.forwards (
            [&] (const Sim::Change& c) { host.push_back (text (c.before) + ">" + text (c.after)); });
        for (const auto& r : model.history.back ())
            plain.push_back (text2 (r.before) + ">" + text2 (r.after));
        ASSERT_EQ (host, plain) << when;
    }

    void expectSame (const std::string& when)
    {
        for (const auto& [key, value] : model.state)
            ASSERT_EQ (held (key.first, key.second), value) << when << ": note " << key.first << " " << key.second;
    }
};

TEST_F (HistoryTest, WholeWriteBacksUndoAndRedoAsAPlainJournalWould)
{
    constexpr int kNotes = 120;
    for (int i = 0; i < kNotes; ++i)
        notes.push_back (&part.addNote (i * 0.5, i * 0.5 + 0.5, 60));
    const char* words[] = {"ka", "kat", "to-", "to-morrow", "la[l aa]", "la"};  // "ka" starts "kat": a shorter text over a longer one
    std::mt19937 random (22);
    auto chance = [&] (int percent) { return static_cast<int> (random () % 100) < percent; };
    auto word = [&] { return std::string (words[random () % 6]); };
    std::size_t shared = 0;

    for (int step = 0; step < 160; ++step)
    {
        const int what = static_cast<int> (random () % 10);
        if (what < 6)
        {
            project.beginEdit ();
            model.history.resize (model.cursor);
            model.history.emplace_back ();
            open = &model.history.back ();
            // Mostly every note again as it stands; now and then a note fewer or one new text.
            for (int n = 0; n < kNotes; ++n)
            {
                if (chance (2))
                    continue;
                for (const char* key : {"lyrics", "lyph", "phoneme"})
                {
                    auto to = model.state[{n, key}];
                    if (chance (3))
                        to = chance (20) ? std::nullopt : std::optional<std::string> (word ());
                    write (n, key, to);
                }
            }
            open = nullptr;
            project.endEdit ();
            model.cursor = model.history.size ();
            shared += project.historyEntry (project.historySize () - 1)->journal.sharedBlocks ();
            expectJournalled ("edit at step " + std::to_string (step));
        }
        else if (what == 6)
            write (static_cast<int> (random () % kNotes), "lyrics", word ());  // outside any edit
        else
        {
            const bool undo = what < 9;
            for (int k = static_cast<int> (random () % 4); k >= 0; --k)
            {
                const bool done = undo ? project.undo () : project.redo ();
                ASSERT_EQ (done, undo ? model.cursor > 0 : model.cursor < model.history.size ());
                if (!done)
                    break;
                if (undo)
                    for (auto r = model.history[--model.cursor].rbegin (); r != model.history[model.cursor].rend (); ++r)
                        model.state[r->key] = r->before;
                else
                    for (const auto& r : model.history[model.cursor++])
                        model.state[r.key] = r.after;
            }
        }
        expectSame ("step " + std::to_string (step));
        ASSERT_EQ (project.historySize (), model.history.size ());
        ASSERT_EQ (project.historyCursor (), model.cursor);
    }
    EXPECT_GT (shared, 0u) << "the write-backs share no block with the edit before";
}

TEST (CallLogTest, CountsEveryAddressOfANameOnEveryThread)
{
    Sim::CallLog::clear ();
    // More addresses than a thread's table holds: the last ones are counted past it.
    std::vector<std::array<char, 8>> names (3000, {"N::call"});
    for (auto& name : names)
        Sim::CallLog::countOnly (Sim::Side::Host, name.data ());
    std::thread other ([] {
        for (int i = 0; i < 100; ++i)
            Sim::CallLog::countOnly (Sim::Side::Plugin, "N::call");
    });
    other.join ();
    EXPECT_EQ (Sim::CallLog::count ("N::call"), 3100);
    EXPECT_EQ (Sim::CallLog::hostCalls (), 3000);
    EXPECT_EQ (Sim::CallLog::pluginCalls (), 100);

    Sim::CallLog::countOnly (Sim::Side::Host, names[5].data ());
    Sim::CallLog::clear ();
    Sim::CallLog::countOnly (Sim::Side::Host, names[7].data ());
    EXPECT_EQ (Sim::CallLog::count ("N::call"), 1);
    EXPECT_EQ (Sim::CallLog::hostCalls (), 1);
    EXPECT_EQ (Sim::CallLog::pluginCalls (), 0);
}

} // namespace
