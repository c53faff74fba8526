#include <cmath>

#include <gtest/gtest.h>

#include "sequence/sequence_note.h"
#include "test_notes.h"

using namespace Zelmor;

TEST(SequenceNote, IdentityAndHash)
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
    b.pitch = 61; // the same note moved to another pitch
    EXPECT_FALSE(equals(a, b));
    b.pitch = a.pitch;
    b.noteObject = fakeNode(2); // same note text, another host note
    EXPECT_FALSE(equals(a, b));

    SequenceNote zero = makeNote(0.0, "a"), negZero = zero;
    negZero.start = -0.0;
    EXPECT_TRUE(equals(zero, negZero));
    EXPECT_EQ(hashNote(zero), hashNote(negZero));
    zero.start = NAN;
    EXPECT_FALSE(equals(zero, zero));
    EXPECT_NE(hashSequence({a, negZero}), hashSequence({negZero, a}));
}
