#include "workbench/sim/svs_plugin.h"

namespace Sim {

using namespace Steinberg;

SvsPlugin::SvsPlugin (const std::string& name) : Object ("SvsPlugin", name, Side::Plugin) {}

template <class I>
I* SvsPlugin::hostFace ()
{
    I* face = nullptr;
    if (!host_ || host_->queryInterface (I::iid, reinterpret_cast<void**> (&face)) != kResultOk)
        return nullptr;
    return face;
}

bool SvsPlugin::readSequence ()
{
    auto* storage = hostFace<SVS::ISequenceStorage> ();
    if (!storage)
        return false;
    NoteList list (name () + " sequence");
    list.reuse (std::move (spare_));
    storage->readSequence (&list);
    storage->release ();
    spare_ = std::move (notes_);
    notes_ = list.take ();
    ++sequenceReads_;
    return true;
}

bool SvsPlugin::readTitle ()
{
    auto* h = hostFace<SVS::IHost> ();
    if (!h)
        return false;
    TextSink sink (name () + " title");
    h->getTitle (&sink);
    h->release ();
    title_ = sink.text ();
    return true;
}

std::vector<std::string> SvsPlugin::readProductStrings ()
{
    auto* info = hostFace<SVS::IHostProductInformationProvider> ();
    if (!info)
        return {};
    TextSink a (name () + " product name"), b (name () + " product version"), c (name () + " product vendor");
    info->getProductName (&a);
    info->getProductVersion (&b);
    info->getProductVendor (&c);
    info->release ();
    return {a.text (), b.text (), c.text ()};
}

std::string SvsPlugin::readContextText ()
{
    auto* ctx = hostFace<SVS::IHostContextProvider> ();
    if (!ctx)
        return {};
    TextSink sink (name () + " context");
    ctx->getContextText (&sink);
    ctx->release ();
    return sink.text ();
}

tresult SvsPlugin::sendMessage (SVS::ISvsMessage& message)
{
    auto* endpoint = hostFace<SVS::IMessageEndpoint> ();
    if (!endpoint)
        return kNoInterface;
    tresult r = endpoint->receiveMessage (&message);
    endpoint->release ();
    return r;
}

tresult PLUGIN_API SvsPlugin::setHost (FUnknown* host)
{
    CallLog::record (Side::Plugin, host ? "ISvsPlugin::setHost" : "ISvsPlugin::setHost(null)", name ());
    ++setHostCalls_;
    // No reference: the agent destroys its host objects whatever their counts.
    host_ = host;
    if (host_ && readsBack_)
        readTitle ();
    return kResultOk;
}

tresult PLUGIN_API SvsPlugin::attach ()
{
    CallLog::record (Side::Plugin, "ISvsPlugin::attach", name ());
    ++attachCalls_;
    if (!stayDetached_)
        attached_ = 1;
    return kResultOk;
}

int32 PLUGIN_API SvsPlugin::isAttached ()
{
    CallLog::record (Side::Plugin, "ISvsPlugin::isAttached", name ());
    return attached_;
}

tresult PLUGIN_API SvsPlugin::titleChanged ()
{
    CallLog::record (Side::Plugin, "ISvsTitleSink::titleChanged", name ());
    ++titleChangedCalls_;
    if (readsBack_)
        readTitle ();
    return kResultOk;
}

tresult PLUGIN_API SvsPlugin::sequenceChanged ()
{
    CallLog::record (Side::Plugin, "ISvsSequenceSink::sequenceChanged", name ());
    ++sequenceChangedCalls_;
    if (readsBack_)
        readSequence ();
    return kResultOk;
}

bool SvsPlugin::query (const TUID iid, void** obj)
{
    return (pluginOn_ && offer<ISvsPlugin> (iid, obj, this))
           || (titleSinkOn_ && offer<ISvsTitleSink> (iid, obj, this))
           || (sequenceSinkOn_ && offer<ISvsSequenceSink> (iid, obj, this))
           || offerUnknown (iid, obj, static_cast<ISvsPlugin*> (this));
}

} // namespace Sim
