#include "svs/svs_host.h"

#include <cstring>
#include <memory>
#include <stdexcept>

namespace Zelmor {

using Steinberg::int32;
using Steinberg::int64;
using Steinberg::tresult;
using Steinberg::uint64;

namespace {

tresult writeText (SVS::ISvsTextSink* sink, const std::string& text)
{
    // An empty text still reaches the sink, with length 0.
    if (sink)
        sink->setText (text.data (), static_cast<int64> (text.size ()));
    return Steinberg::kResultOk;
}

} // namespace

SVSHostImpl::SVSHostImpl (std::string name, std::string version, std::string vendor)
: productName (std::move (name)), productVersion (std::move (version)), productVendor (std::move (vendor))
{
}

SVSHostImpl::~SVSHostImpl ()
{
    project = nullptr;
    // Borrowed: forgotten, not released.
    sequenceSink = nullptr;
    titleSink = nullptr;
    // A plug-in that outlives us must not keep calling into freed memory.
    if (plugin)
    {
        Steinberg::ISvsPlugin* p = plugin;
        plugin = nullptr;
        p->setHost (nullptr);
    }
    notes.records ().clear ();
}

tresult PLUGIN_API SVSHostImpl::queryInterface (const Steinberg::TUID iid, void** obj)
{
    if (!obj)
        return Steinberg::kInvalidArgument;
    if (!iid)
    {
        *obj = nullptr;
        return Steinberg::kInvalidArgument;
    }
    using Steinberg::FUnknownPrivate::iidEqual;
    void* face = nullptr;
    if (iidEqual (iid, SVS::IHost::iid))
        face = static_cast<SVS::IHost*> (this);
    else if (iidEqual (iid, SVS::IHostContextProvider::iid))
        face = static_cast<SVS::IHostContextProvider*> (this);
    else if (iidEqual (iid, SVS::IHostProductInformationProvider::iid))
        face = static_cast<SVS::IHostProductInformationProvider*> (this);
    else if (iidEqual (iid, SVS::IMessageEndpoint::iid))
        face = static_cast<SVS::IMessageEndpoint*> (this);
    else if (iidEqual (iid, SVS::ISequenceStorage::iid))
        face = static_cast<SVS::ISequenceStorage*> (this);
    if (face)
    {
        addRef ();
        *obj = face;
        return Steinberg::kResultOk;
    }
    return FObject::queryInterface (iid, obj);
}

bool SVSHostImpl::isTypeOf (Steinberg::FClassID name, bool askBaseClass) const
{
    if (!name)
        return false;
    if (std::strcmp (name, getFClassID ()) == 0)
        return true;
    if (!askBaseClass)
        return false;
    return std::strcmp (name, FObject::getFClassID ()) == 0;
}

tresult PLUGIN_API SVSHostImpl::getTitle (SVS::ISvsTextSink* sink) { return writeText (sink, title); }
tresult PLUGIN_API SVSHostImpl::getContextText (SVS::ISvsTextSink* sink) { return writeText (sink, contextText); }
tresult PLUGIN_API SVSHostImpl::getProductName (SVS::ISvsTextSink* sink) { return writeText (sink, productName); }
tresult PLUGIN_API SVSHostImpl::getProductVersion (SVS::ISvsTextSink* sink) { return writeText (sink, productVersion); }
tresult PLUGIN_API SVSHostImpl::getProductVendor (SVS::ISvsTextSink* sink) { return writeText (sink, productVendor); }

tresult PLUGIN_API SVSHostImpl::receiveMessage (SVS::ISvsMessage* message)
{
    if (!message)
        return Steinberg::kResultOk;
    const uint64 size = message->getSize ();
    // One spare byte keeps the message zero-terminated. All ones wraps the
    // length to 0: no buffer at all. Anything else that is negative as a
    // signed count cannot be allocated.
    const uint64 length = size + 1;
    if (static_cast<int64> (length) < 0)
        throw std::length_error ("cannot create std::vector larger than max_size()");
    std::unique_ptr<char[]> buffer;
    if (length != 0)
        buffer.reset (new char[static_cast<size_t> (length)] ());
    message->read (buffer.get (), size);
    return Steinberg::kResultOk;
}

tresult PLUGIN_API SVSHostImpl::readSequence (SVS::INoteList* target)
{
    if (!target)
        return Steinberg::kResultOk;
    // The count is asked anew each time: the target may call back into us.
    for (int32 i = 0; i < static_cast<int32> (notes.records ().size ()); ++i)
    {
        SVS::SVSNote copy = notes.records ()[static_cast<size_t> (i)];
        target->addNote (&copy);
    }
    return Steinberg::kResultOk;
}

tresult PLUGIN_API SVSHostImpl::writeSequence (SVS::INoteList* source)
{
    if (!source)
        return Steinberg::kResultOk;
    notes.records ().clear ();  // the capacity stays for the next pass
    // The source is often a stack list with count 0: its addRef/release stay untouched.
    for (int32 i = 0; i < source->size (); ++i)
    {
        SVS::SVSNote record {};
        if (source->getNoteCopy (i, &record) == 0)
            notes.addNote (&record);
    }
    if (sequenceSink)
        sequenceSink->sequenceChanged ();
    return Steinberg::kResultOk;
}

} // namespace Zelmor
