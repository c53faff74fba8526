#include "svs/svs_note_list.h"
#include "svs_fakes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

using svs_test::recordAt;
using Zelmor::SVSNoteListImpl;

namespace {

const SVS::SVSNote kPoison = [] {
    SVS::SVSNote n;
    std::memset (&n, 0x5A, sizeof n);
    return n;
}();

} // namespace

TEST (SVSNoteList, QueryInterfaceKnowsOnlyFUnknownAndNoteList)
{
    SVSNoteListImpl list;
    void* out = nullptr;
    EXPECT_EQ (list.queryInterface (SVS::INoteList::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::INoteList*> (&list));
    EXPECT_EQ (list.queryInterface (Steinberg::FUnknown::iid, &out), 0);
    EXPECT_EQ (list.referenceCount (), 2) << "each successful query adds a reference";

    out = &list;
    EXPECT_EQ (list.queryInterface (SVS::IHost::iid, &out), -1);
    EXPECT_EQ (out, nullptr);
    EXPECT_EQ (list.queryInterface (SVS::INoteList::iid, nullptr), -1);
    EXPECT_EQ (list.referenceCount (), 2);
}

TEST (SVSNoteList, ReferenceCountStartsAtZeroAndReleaseDeletesAtZero)
{
    auto* list = new SVSNoteListImpl;
    EXPECT_EQ (list->referenceCount (), 0);
    EXPECT_EQ (list->addRef (), 1u);
    EXPECT_EQ (list->addRef (), 2u);
    EXPECT_EQ (list->release (), 1u);
    EXPECT_EQ (list->release (), 0u);  // deleted here; a sanitiser build checks it
}

TEST (SVSNoteList, CountsAddsAndCopiesRecords)
{
    SVSNoteListImpl list;
    EXPECT_EQ (list.getNoteCount (), 0);
    SVS::SVSNote a = recordAt (0.0, 1.0);
    SVS::SVSNote b = recordAt (1.0, 2.5);
    EXPECT_EQ (list.addNote (&a), 0);
    EXPECT_EQ (list.addNote (&b), 0);
    EXPECT_EQ (list.addNote (nullptr), 1);
    a.startTime = 99.0;  // the list keeps its own copy
    EXPECT_EQ (list.getNoteCount (), 2);
    EXPECT_EQ (list.size (), 2);

    SVS::SVSNote out = kPoison;
    EXPECT_EQ (list.getNote (0, &out), 0);
    EXPECT_EQ (out.startTime, 0.0);
    out = kPoison;
    EXPECT_EQ (list.getNoteCopy (1, &out), 0);
    EXPECT_EQ (std::memcmp (&out, &b, sizeof b), 0) << "all 152 bytes are copied";
}

TEST (SVSNoteList, BadIndicesAreAsymmetric)
{
    SVSNoteListImpl list;
    SVS::SVSNote a = recordAt (0.0, 1.0);
    list.addNote (&a);

    for (auto get : {&SVSNoteListImpl::getNote, &SVSNoteListImpl::getNoteCopy})
    {
        SVS::SVSNote out = kPoison;
        EXPECT_EQ ((list.*get) (-1, &out), 1);
        EXPECT_EQ ((list.*get) (INT32_MIN, &out), 1);
        EXPECT_EQ (std::memcmp (&out, &kPoison, sizeof out), 0) << "a negative index leaves the record alone";

        for (Steinberg::int32 index : {1, INT32_MAX})
        {
            try
            {
                (list.*get) (index, &out);
                ADD_FAILURE () << "index " << index << " did not throw";
            }
            catch (const std::out_of_range& e)
            {
                EXPECT_STREQ (e.what (), "vector");
            }
        }
        EXPECT_EQ (std::memcmp (&out, &kPoison, sizeof out), 0);
    }
}
