#include "svs/svs_note_list.h"
#include "svs_fakes.h"

#include <gtest/gtest.h>

#include <stdexcept>

using svs_test::recordAt;
using Zelmor::SVSNoteListImpl;

TEST (SVSNoteList, QueryInterfaceAndReferenceCount)
{
    auto* list = new SVSNoteListImpl;
    void* out = nullptr;
    EXPECT_EQ (list->queryInterface (SVS::INoteList::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::INoteList*> (list));
    EXPECT_EQ (list->queryInterface (Steinberg::FUnknown::iid, &out), 0);
    out = list;
    EXPECT_EQ (list->queryInterface (SVS::IHost::iid, &out), -1);
    EXPECT_EQ (out, nullptr);
    EXPECT_EQ (list->referenceCount (), 2) << "from 0, one per successful query";
    list->release ();
    EXPECT_EQ (list->release (), 0u);  // deleted here; sanitiser builds check it
}

TEST (SVSNoteList, CopiesWholeRecordsAndBadIndicesAreAsymmetric)
{
    SVSNoteListImpl list;
    SVS::SVSNote a = recordAt (0.0, 1.0);
    a.phonemeParams[7] = 7;  // the last bytes travel too
    EXPECT_EQ (list.addNote (&a), 0);
    EXPECT_EQ (list.addNote (nullptr), 1);
    a.startTime = 9.0;  // the list holds its own copy
    EXPECT_EQ (list.size (), 1);
    EXPECT_EQ (list.getNoteCount (), 1);
    for (auto get : {&SVSNoteListImpl::getNote, &SVSNoteListImpl::getNoteCopy})
    {
        SVS::SVSNote out = recordAt (5.0, 6.0);
        EXPECT_EQ ((list.*get) (0, &out), 0);
        EXPECT_EQ (out.startTime, 0.0);
        EXPECT_EQ (out.phonemeParams[7], 7);
        out.startTime = 5.0;
        EXPECT_EQ ((list.*get) (-1, &out), 1);
        EXPECT_EQ ((list.*get) (INT32_MIN, &out), 1);
        EXPECT_EQ (out.startTime, 5.0) << "a negative index leaves the record alone";
        for (Steinberg::int32 index : {1, INT32_MAX})
        {
            try { (list.*get) (index, &out); ADD_FAILURE () << index << " did not throw"; }
            catch (const std::out_of_range& e) { EXPECT_STREQ (e.what (), "vector"); }
        }
    }
}
