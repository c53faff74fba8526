#include "svs/svs_host.h"
#include "svs/svs_host_list.h"
#include "svs_fakes.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>

using namespace svs_test;
using Zelmor::SVSHostImpl;
using Zelmor::SVSNoteListImpl;

TEST (SVSHost, TextGettersWriteBytesAndLength)
{
    SVSHostImpl host ("Studio", "13.0.1", "Vendor GmbH");
    host.setTitleText ("Cantorela Beta Agent: Song -  - Vox");
    TextSink sink;
    EXPECT_EQ (static_cast<SVS::IHost&> (host).getTitle (&sink), 0);
    EXPECT_EQ (static_cast<SVS::IHostContextProvider&> (host).getTitle (&sink), 0);
    EXPECT_EQ (host.getContextText (&sink), 0);
    EXPECT_EQ (host.getProductName (&sink), 0);
    EXPECT_EQ (host.getProductVersion (&sink), 0);
    EXPECT_EQ (host.getProductVendor (&sink), 0);
    ASSERT_EQ (sink.texts.size (), 6u);
    EXPECT_EQ (sink.texts[0], "Cantorela Beta Agent: Song -  - Vox");
    EXPECT_EQ (sink.texts[1], sink.texts[0]);
    EXPECT_EQ (sink.texts[2], "") << "the context text is empty but still delivered";
    EXPECT_EQ (sink.texts[3], "Studio");
    EXPECT_EQ (sink.texts[4], "13.0.1");
    EXPECT_EQ (sink.texts[5], "Vendor GmbH");
    EXPECT_EQ (host.getTitle (nullptr), 0);
}

TEST (SVSHost, ReceiveMessageReadsIntoATerminatedBuffer)
{
    SVSHostImpl host;
    Message empty (0);
    EXPECT_EQ (host.receiveMessage (&empty), 0);
    EXPECT_EQ (empty.reads, 1);
    EXPECT_NE (empty.lastBuffer, nullptr) << "a zero-size message still gets one byte";
    EXPECT_EQ (empty.lastSize, 0u);
    EXPECT_TRUE (empty.zeroFilled);

    Message some (100);
    EXPECT_EQ (host.receiveMessage (&some), 0);
    EXPECT_EQ (host.receiveMessage (&some), 0);
    EXPECT_EQ (some.reads, 2);
    EXPECT_TRUE (some.zeroFilled) << "every message gets a fresh zeroed buffer";

    Message allOnes (std::numeric_limits<uint64>::max ());
    EXPECT_EQ (host.receiveMessage (&allOnes), 0);
    EXPECT_EQ (allOnes.reads, 1);
    EXPECT_EQ (allOnes.lastBuffer, nullptr) << "the length wraps to 0: no buffer";

    for (uint64 size : {uint64 (1) << 63, std::numeric_limits<uint64>::max () - 1})
    {
        Message huge (size);
        EXPECT_THROW (host.receiveMessage (&huge), std::length_error);
        EXPECT_EQ (huge.reads, 0);
    }
    EXPECT_EQ (host.receiveMessage (nullptr), 0);
}

TEST (SVSHost, QueryInterfaceHandsOutEachFaceButNotTheNoteList)
{
    SVSHostImpl host;
    void* out = nullptr;
    EXPECT_EQ (host.queryInterface (SVS::IHost::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::IHost*> (&host));
    EXPECT_EQ (host.queryInterface (SVS::IHostContextProvider::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::IHostContextProvider*> (&host));
    EXPECT_EQ (host.queryInterface (SVS::IHostProductInformationProvider::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::IHostProductInformationProvider*> (&host));
    EXPECT_EQ (host.queryInterface (SVS::IMessageEndpoint::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::IMessageEndpoint*> (&host));
    EXPECT_EQ (host.queryInterface (SVS::ISequenceStorage::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::ISequenceStorage*> (&host));
    EXPECT_EQ (host.queryInterface (Steinberg::FObject::iid, &out), 0);
    EXPECT_EQ (out, static_cast<Steinberg::FObject*> (&host));
    EXPECT_EQ (host.getRefCount (), 7) << "one reference per successful query";

    // Through a face: the call must reach the object's one queryInterface.
    SVS::IMessageEndpoint* endpoint = &host;
    EXPECT_EQ (endpoint->queryInterface (SVS::ISequenceStorage::iid, &out), 0);
    EXPECT_EQ (out, static_cast<SVS::ISequenceStorage*> (&host));

    out = &host;
    EXPECT_NE (host.queryInterface (SVS::INoteList::iid, &out), 0);
    EXPECT_EQ (out, nullptr);
    EXPECT_EQ (host.getRefCount (), 8);
}

TEST (SVSHost, ClassIdentity)
{
    SVSHostImpl host;
    EXPECT_STREQ (host.isA (), "SVSHostImpl");
    EXPECT_TRUE (host.isA ("SVSHostImpl"));
    EXPECT_FALSE (host.isA ("FObject"));
    EXPECT_FALSE (host.isTypeOf ("FObject", false));
    EXPECT_TRUE (host.isTypeOf ("FObject", true));
    EXPECT_TRUE (host.isTypeOf ("SVSHostImpl", false));
    EXPECT_FALSE (host.isTypeOf ("IDependent", true));
    EXPECT_FALSE (host.isTypeOf (nullptr, true));
    EXPECT_TRUE (host.isEqualInstance (static_cast<Steinberg::FObject*> (&host)));
}

TEST (SVSHost, WriteSequenceReplacesTheStoreAndNotifies)
{
    SVSHostImpl host;
    SequenceSink sink;
    host.setSequenceSink (&sink);

    SVSNoteListImpl source;
    SVS::SVSNote a = recordAt (0.0, 1.0), b = recordAt (1.0, 2.0);
    source.addNote (&a);
    source.addNote (&b);
    EXPECT_EQ (host.writeSequence (&source), 0);
    EXPECT_EQ (source.referenceCount (), 0) << "a stack list's count must stay untouched";
    EXPECT_EQ (source.getNoteCount (), 2);
    ASSERT_EQ (host.storedNotes ().size (), 2u);
    EXPECT_EQ (sink.calls, 1);

    SVSNoteListImpl empty;
    EXPECT_EQ (host.writeSequence (&empty), 0);
    EXPECT_TRUE (host.storedNotes ().empty ());
    EXPECT_EQ (sink.calls, 2) << "an empty sequence still notifies";

    host.setSequenceSink (nullptr);
    EXPECT_EQ (host.writeSequence (&source), 0);
    EXPECT_EQ (host.storedNotes ().size (), 2u);
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
        if (i % 2)
            return 1;
        *out = recordAt (i, i + 1);
        return 0;
    }
    tresult PLUGIN_API addNote (const SVS::SVSNote*) override { return 1; }
};

} // namespace

TEST (SVSHost, WriteSequenceSkipsRecordsThatFail)
{
    SVSHostImpl host;
    PatchyList source;
    host.writeSequence (&source);
    ASSERT_EQ (host.storedNotes ().size (), 3u);
    EXPECT_EQ (host.storedNotes ()[1].startTime, 2.0);
    EXPECT_EQ (host.storedNotes ()[2].startTime, 4.0);
}

TEST (SVSHost, ReadSequenceAppendsToTheTarget)
{
    SVSHostImpl host;
    SVSNoteListImpl target;
    EXPECT_EQ (host.readSequence (&target), 0);
    EXPECT_EQ (target.getNoteCount (), 0);

    SVSNoteListImpl source;
    SVS::SVSNote a = recordAt (0.0, 1.0), b = recordAt (1.0, 2.0);
    source.addNote (&a);
    source.addNote (&b);
    host.writeSequence (&source);
    host.readSequence (&target);
    host.readSequence (&target);
    ASSERT_EQ (target.getNoteCount (), 4);
    EXPECT_EQ (target.records ()[2].startTime, 0.0);
    EXPECT_EQ (target.records ()[3].endTime, 2.0);
    EXPECT_EQ (host.readSequence (nullptr), 0);
}

TEST (SVSHostList, DeletesHostsLastToFirstWhateverTheirCounts)
{
    std::vector<std::string> log;
    Plugin first (&log, "first"), second (&log, "second"), detached (&log, "detached");
    {
        Zelmor::SVSHostList list;
        for (Plugin* p : {&first, &detached, &second})
        {
            list.hosts.emplace_back (new SVSHostImpl);
            list.hosts.back ()->setPlugin (p);
        }
        list.hosts[0]->addRef ();  // a plug-in that kept references
        list.hosts[0]->addRef ();
        list.hosts[1]->setPlugin (nullptr);
    }
    EXPECT_EQ (log, (std::vector<std::string> {"second", "first"}));
    ASSERT_EQ (first.hosts.size (), 1u);
    EXPECT_EQ (first.hosts[0], nullptr) << "destruction detaches the plug-in";
    EXPECT_TRUE (detached.hosts.empty ());
}
