// The object a synthesiser plug-in talks to in place of the host: its title,
// the host product's strings, a message sink and its stored note sequence.
#pragma once

#include "svs/svs_interfaces.h"
#include "svs/svs_note_list.h"

#include "base/source/fobject.h"
#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"

#include <string>
#include <vector>

namespace Zelmor {

// A passive holder of copies: it never calls the host and converts nothing.
// The plug-in and sinks are borrowed (no reference held). The binding code owns
// it through SVSHostList, which deletes it whatever its reference count says.
class SVSHostImpl : public SVS::IHost,
                    public SVS::IHostContextProvider,
                    public SVS::IHostProductInformationProvider,
                    public SVS::IMessageEndpoint,
                    public SVS::ISequenceStorage,
                    public Steinberg::FObject
{
public:
    SVSHostImpl (std::string productName = {}, std::string productVersion = {},
                 std::string productVendor = {});
    ~SVSHostImpl () override;

    SVSHostImpl (const SVSHostImpl&) = delete;
    SVSHostImpl& operator= (const SVSHostImpl&) = delete;

    // FUnknown, for all five faces and FObject alike.
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef () override { return FObject::addRef (); }
    Steinberg::uint32 PLUGIN_API release () override { return FObject::release (); }

    // FObject
    static Steinberg::FClassID getFClassID () { return "SVSHostImpl"; }
    Steinberg::FClassID isA () const override { return getFClassID (); }
    bool isA (Steinberg::FClassID name) const override { return isTypeOf (name, false); }
    bool isTypeOf (Steinberg::FClassID name, bool askBaseClass = true) const override;

    // IHost and IHostContextProvider position 3 share this one.
    Steinberg::tresult PLUGIN_API getTitle (SVS::ISvsTextSink* sink) override;
    // IHostContextProvider
    Steinberg::tresult PLUGIN_API getContextText (SVS::ISvsTextSink* sink) override;
    // IHostProductInformationProvider
    Steinberg::tresult PLUGIN_API getProductName (SVS::ISvsTextSink* sink) override;
    Steinberg::tresult PLUGIN_API getProductVersion (SVS::ISvsTextSink* sink) override;
    Steinberg::tresult PLUGIN_API getProductVendor (SVS::ISvsTextSink* sink) override;
    // IMessageEndpoint: reads the message in full and drops it.
    Steinberg::tresult PLUGIN_API receiveMessage (SVS::ISvsMessage* message) override;
    // ISequenceStorage
    Steinberg::tresult PLUGIN_API readSequence (SVS::INoteList* target) override;
    Steinberg::tresult PLUGIN_API writeSequence (SVS::INoteList* source) override;

    // For the binding code. Nothing here adds or drops a reference.
    Steinberg::ISvsPlugin* getPlugin () const { return plugin; }
    void setPlugin (Steinberg::ISvsPlugin* p) { plugin = p; }
    Steinberg::ISvsTitleSink* getTitleSink () const { return titleSink; }
    void setTitleSink (Steinberg::ISvsTitleSink* sink) { titleSink = sink; }
    Steinberg::ISvsSequenceSink* getSequenceSink () const { return sequenceSink; }
    void setSequenceSink (Steinberg::ISvsSequenceSink* sink) { sequenceSink = sink; }
    Steinberg::IHostProject* getProject () const { return project; }
    void setProject (Steinberg::IHostProject* p) { project = p; }
    const std::string& getTitleText () const { return title; }
    void setTitleText (std::string text) { title = std::move (text); }

    const std::vector<SVS::SVSNote>& storedNotes () const { return notes.records (); }

private:
    Steinberg::ISvsPlugin* plugin = nullptr;
    Steinberg::ISvsTitleSink* titleSink = nullptr;
    Steinberg::ISvsSequenceSink* sequenceSink = nullptr;
    std::string contextText;  // never assigned: served empty
    std::string title;
    std::string spareText;    // unused; kept for the layout
    SVSNoteListImpl notes;    // its own count is never used
    Steinberg::IHostProject* project = nullptr;
    std::string productName;
    std::string productVersion;
    std::string productVendor;
};

} // namespace Zelmor
