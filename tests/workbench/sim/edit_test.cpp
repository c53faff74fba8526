#include "fakes.h"

#include "workbench/sim/note.h"
#include "workbench/sim/part.h"
#include "workbench/sim/project.h"
#include "workbench/sim/track.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

class EditTest : public SimTest::Fixture
{
protected:
    Sim::Project project {"Song"};
    Sim::Part& part = project.root ().addInstrumentTrack ("V").addPart (0, 8);
    Sim::Note& a = part.addNote (0, 1, 60, "ka");
    Sim::Note& b = part.addNote (1, 2, 62);
};

TEST_F (EditTest, UndoRestoresTextsAndAttributesThenRedoReappliesThem)
{
    std::vector<std::string> trace;
    SimTest::FakeStep s1 (&trace, "s1"), s2 (&trace, "s2");
    project.typeLyric (b, "ra", nullptr);

    // The agent's own writes inside a second edit, with and without the context.
    auto& ctx = project.beginEdit ();
    FVariant word (STR16 ("ki[k i]"));
    a.setValue ("lyrics", &word, nullptr, &ctx);
    b.setValue ("phoneme", &word, nullptr, nullptr);
    b.setText ("phoneme", "k i");  // written twice: undo goes back past both
    a.setAttr ("lyph", Sim::Value::text ("ki[k i]"));
    b.setAttr ("svsn", Sim::Value (int64_t {1}));
    a.removeAttr ("lyph");
    a.setAttr ("lyph", Sim::Value::text ("ki"));
    ctx.addEditStep (&s1);
    ctx.addEditStep (&s2);
    project.endEdit ();
    EXPECT_EQ (s1.refs, 2);
    EXPECT_EQ (project.historySize (), 2u);

    ASSERT_TRUE (project.undo ());
    EXPECT_EQ (a.lyric (), "ka");
    EXPECT_FALSE (b.hasText ("phoneme"));
    EXPECT_FALSE (a.hasAttr ("lyph"));
    EXPECT_FALSE (b.hasAttr ("svsn"));
    ASSERT_TRUE (project.undo ());
    EXPECT_FALSE (b.hasText ("lyrics"));
    EXPECT_FALSE (project.undo ());

    ASSERT_TRUE (project.redo ());
    EXPECT_EQ (b.lyric (), "ra");
    ASSERT_TRUE (project.redo ());
    EXPECT_EQ (a.lyric (), "ki[k i]");
    EXPECT_EQ (b.phoneme (), "k i");
    EXPECT_EQ (a.attrText ("lyph"), "ki");
    EXPECT_EQ (b.attrInt ("svsn"), 1);
    EXPECT_FALSE (project.redo ());
    EXPECT_EQ (trace, (std::vector<std::string> {"undo s2", "undo s1", "redo s1", "redo s2"}));

    project.clearHistory ();
    EXPECT_EQ (s1.refs, 1);
    EXPECT_EQ (s2.refs, 1);
}

TEST_F (EditTest, NewEditCutsOffRedoAndEmptyEditsAreDropped)
{
    std::vector<std::string> trace;
    SimTest::FakeStep undone (&trace, "undone");
    a.setText ("lyrics", "free");  // outside an edit: no undo brings back "ka"
    project.beginEdit ();
    a.setText ("lyrics", "x");
    project.openContext ()->addEditStep (&undone);
    project.endEdit ();
    project.undo ();

    project.beginEdit ();
    project.endEdit ();
    EXPECT_EQ (project.historySize (), 1u);  // nothing changed: not kept, redo still possible

    project.beginEdit ();
    b.setText ("lyrics", "y");
    project.endEdit ();
    EXPECT_EQ (project.historySize (), 1u);
    EXPECT_EQ (undone.refs, 1);  // its edit can't come back: reference given back
    EXPECT_FALSE (project.redo ());
    EXPECT_EQ (a.lyric (), "free");
}

} // namespace
