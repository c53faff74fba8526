#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "sequence/sequence_note.h"
#include "test_notes.h"

using namespace Zelmor;

TEST(SequenceNote, OnlyIdentityFieldsDecideEqualityAndHash)
{
    const SequenceNote a = makeNote(1.0, "ka[k a]", 1);
    SequenceNote b = a;
    b.muted = true;
    b.transpose = 12;
    b.soundStart = 0.25;
    b.soundEnd = 9.0;
    b.partAnchor = reinterpret_cast<Steinberg::IEditAnchor*>(&b);
    EXPECT_TRUE(equals(a, b));
    EXPECT_EQ(hashNote(a), hashNote(b));

    SequenceNote other = a;
    other.noteObject = fakeNode(2);
    EXPECT_FALSE(equals(a, other));
    SequenceNote phon = a;
    phon.phoneme = "k a";
    EXPECT_FALSE(equals(a, phon));
}

TEST(SequenceNote, FloatsCompareExactly)
{
    SequenceNote pos = makeNote(0.0, "a");
    SequenceNote neg = pos;
    neg.start = -0.0;
    EXPECT_TRUE(equals(pos, neg));
    EXPECT_EQ(hashNote(pos), hashNote(neg));

    SequenceNote nan = pos;
    nan.start = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(equals(nan, nan));
    SequenceNote near = pos;
    near.end = std::nextafter(pos.end, 10.0);
    EXPECT_FALSE(equals(pos, near));
}

TEST(SequenceNote, SequenceHashIsOrderSensitive)
{
    EXPECT_EQ(hashSequence({}), 0u);
    EXPECT_EQ(hashCombine(0, 0), 0x9e3779b97f4a7c15ULL);
    const SequenceNote a = makeNote(1.0, "a", 1);
    const SequenceNote b = makeNote(2.0, "b", 2);
    EXPECT_EQ(hashSequence({a}), hashCombine(0, hashNote(a)));
    EXPECT_NE(hashSequence({a, b}), hashSequence({b, a}));
}
