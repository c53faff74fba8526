#include "svs/svs_host.h"
#include "svs/svs_host_list.h"
#include "svs/svs_note_list.h"
#include "svs_fakes.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

using namespace svs_test;
using Zelmor::SVSHostImpl;
using Zelmor::SVSNoteListImpl;

TEST (SVSHost, TextGettersWriteBytesAndLength)
{
    SVSHostImpl host ("Studio", "13.0.1", "Vendor");
    host.setTitleText ("Cantorela Beta Agent: Song -  - Vox");
    TextSink sink;
    EXPECT_EQ (static_cast<SVS::IHost&> (host).getTitle (&sink), 0);
    EXPECT_EQ (host.getContextText (&sink), 0);
    host.getProductName (&sink);
    host.getProductVersion (&sink);
    host.getProductVendor (&sink);
    EXPECT_EQ (sink.texts, (std::vector<std::string> {"Cantorela Beta Agent: Song -  - Vox", "", "Studio",
                                                      "13.0.1", "Vendor"}));
}

TEST (SVSHost, ReceiveMessageReadsIntoATerminatedBuffer)
{
    SVSHostImpl host;
    Message empty (0), some (100), allOnes (std::numeric_limits<uint64>::max ());
    EXPECT_EQ (host.receiveMessage (&empty), 0);
    EXPECT_TRUE (empty.lastBuffer && empty.zeroFilled) << "size 0 still gets one byte";
    host.receiveMessage (&some);
    host.receiveMessage (&some);
    EXPECT_TRUE (some.reads == 2 && some.zeroFilled) << "each message gets a fresh zeroed buffer";
    EXPECT_EQ (host.receiveMessage (&allOnes), 0);
    EXPECT_EQ (allOnes.reads, 1);
    EXPECT_EQ (allOnes.lastBuffer, nullptr) << "the length wraps to 0: no buffer";
    for (uint64 size : {uint64 (1) << 63, std::numeric_limits<uint64>::max () - 1})
    {
        Message huge (size);
        EXPECT_THROW (host.receiveMessage (&huge), std::length_error);
        EXPECT_EQ (huge.reads, 0);
    }
}

TEST (SVSHost, QueryInterfaceAndClassIdentity)
{
    SVSHostImpl host;
    void* out = nullptr;
    SVS::IMessageEndpoint* endpoint = &host;  // any face reaches the one queryInterface
    const std::pair<const Steinberg::FUID*, void*> faces[] = {
        {&SVS::IHost::iid, static_cast<SVS::IHost*> (&host)},
        {&SVS::IHostContextProvider::iid, static_cast<SVS::IHostContextProvider*> (&host)},
        {&SVS::IHostProductInformationProvider::iid, static_cast<SVS::IHostProductInformationProvider*> (&host)},
        {&SVS::IMessageEndpoint::iid, static_cast<SVS::IMessageEndpoint*> (&host)},
        {&SVS::ISequenceStorage::iid, static_cast<SVS::ISequenceStorage*> (&host)},
        {&Steinberg::FObject::iid, static_cast<Steinberg::FObject*> (&host)}};
    for (const auto& [iid, face] : faces)
    {
        EXPECT_EQ (endpoint->queryInterface (iid->toTUID (), &out), 0);
        EXPECT_EQ (out, face);
    }
    out = &host;
    EXPECT_NE (host.queryInterface (SVS::INoteList::iid, &out), 0);
    EXPECT_EQ (out, nullptr);
    EXPECT_EQ (host.getRefCount (), 7) << "one reference per successful query";

    EXPECT_FALSE (host.isTypeOf ("FObject", false));
    EXPECT_TRUE (host.isTypeOf ("FObject", true));
}

namespace {

// Fails every odd index, as a plug-in's own list might.
struct PatchyList : SVS::INoteList
{
    SVS_TEST_UNKNOWN
    int32 PLUGIN_API getNoteCount () override { return 5; }
    int32 PLUGIN_API size () override { return 5; }
    tresult PLUGIN_API getNote (int32 i, SVS::SVSNote* out) override { return getNoteCopy (i, out); }
    tresult PLUGIN_API getNoteCopy (int32 i, SVS::SVSNote* out) override
    {
        *out = recordAt (i, i + 1);
        return i % 2;
    }
    tresult PLUGIN_API addNote (const SVS::SVSNote*) override { return 1; }
};

} // namespace

TEST (SVSHost, WriteAndReadSequence)
{
    SVSHostImpl host;
    SequenceSink sink;
    host.setSequenceSink (&sink);
    SVSNoteListImpl target, source;
    SVS::SVSNote a = recordAt (0.0, 1.0), b = recordAt (1.0, 2.0);
    source.addNote (&a);
    source.addNote (&b);
    EXPECT_EQ (host.writeSequence (&source), 0);
    EXPECT_EQ (source.referenceCount (), 0) << "a stack list's count stays untouched";
    EXPECT_EQ (sink.calls, 1);
    EXPECT_EQ (host.readSequence (&target), 0);
    host.readSequence (&target);
    ASSERT_EQ (target.size (), 4) << "reads append";
    EXPECT_EQ (target.records ()[3].endTime, 2.0);

    PatchyList patchy;
    host.writeSequence (&patchy);
    ASSERT_EQ (host.storedNotes ().size (), 3u) << "failing records are skipped, the rest still come";
    EXPECT_EQ (host.storedNotes ()[2].startTime, 4.0);

    SVSNoteListImpl empty;
    host.writeSequence (&empty);
    EXPECT_TRUE (host.storedNotes ().empty ());
    EXPECT_EQ (sink.calls, 3) << "an empty sequence still notifies";
}

TEST (SVSHostList, DeletesHostsLastToFirstWhateverTheirCounts)
{
    std::vector<std::string> log;
    Plugin first {&log, "first"}, detached {&log, "detached"}, second {&log, "second"};
    {
        Zelmor::SVSHostList list;
        for (Plugin* p : {&first, &detached, &second})
            list.hosts.emplace_back (new SVSHostImpl)->setPlugin (p);
        list.hosts[0]->addRef ();  // a plug-in that kept a reference
        list.hosts[1]->setPlugin (nullptr);
    }
    EXPECT_EQ (log, (std::vector<std::string> {"second-", "first-"}));
}

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
