// A recording synthesiser plug-in: it takes the host object the agent gives
// it, reads its title and its sequence back when told, and keeps what it got.
#pragma once

#include "workbench/sim/note_list.h"
#include "workbench/sim/object.h"

#include "host/plugin_interfaces.h"
#include "svs/svs_interfaces.h"

#include <string>
#include <vector>

namespace Sim {

class SvsPlugin : public Object,
                  public Steinberg::ISvsPlugin,
                  public Steinberg::ISvsTitleSink,
                  public Steinberg::ISvsSequenceSink
{
public:
    explicit SvsPlugin (const std::string& name = "synth");

    /** The pointer to put into a slot. */
    Steinberg::FUnknown* unknown () { return static_cast<Steinberg::ISvsPlugin*> (this); }
    Steinberg::ISvsPlugin* plugin () { return this; }

    // Switches: a plug-in without ISvsPlugin is no synthesiser to the agent.
    void enablePlugin (bool on) { pluginOn_ = on; }
    void enableTitleSink (bool on) { titleSinkOn_ = on; }
    void enableSequenceSink (bool on) { sequenceSinkOn_ = on; }
    /** What isAttached answers; attach() sets it to 1 unless `stayDetached`. */
    void setAttached (Steinberg::int32 value, bool stayDetached = false)
    {
        attached_ = value;
        stayDetached_ = stayDetached;
    }
    /** Read title and sequence back when told (default); off to test a lazy plug-in. */
    void setReadsBack (bool on) { readsBack_ = on; }

    /** The host object given by the last setHost (no reference is held). */
    Steinberg::FUnknown* host () const { return host_; }
    const std::vector<SVS::SVSNote>& notes () const { return notes_; }
    const std::string& title () const { return title_; }

    int setHostCalls () const { return setHostCalls_; }
    int attachCalls () const { return attachCalls_; }
    int titleChangedCalls () const { return titleChangedCalls_; }
    int sequenceChangedCalls () const { return sequenceChangedCalls_; }
    int sequenceReads () const { return sequenceReads_; }

    /** Reads the sequence now through SVS::ISequenceStorage; false without a host or the face. */
    bool readSequence ();
    /** Reads the title now through SVS::IHost. */
    bool readTitle ();
    /** The three product strings through SVS::IHostProductInformationProvider (empty without). */
    std::vector<std::string> readProductStrings ();
    /** The context text through SVS::IHostContextProvider. */
    std::string readContextText ();
    /** Sends a message through SVS::IMessageEndpoint; kNoInterface without one. */
    Steinberg::tresult sendMessage (SVS::ISvsMessage& message);

    // ISvsPlugin
    Steinberg::tresult PLUGIN_API setHost (Steinberg::FUnknown* host) override;
    Steinberg::tresult PLUGIN_API attach () override;
    Steinberg::int32 PLUGIN_API isAttached () override;
    // ISvsTitleSink
    Steinberg::tresult PLUGIN_API titleChanged () override;
    // ISvsSequenceSink
    Steinberg::tresult PLUGIN_API sequenceChanged () override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    template <class I>
    I* hostFace ();

    Steinberg::FUnknown* host_ = nullptr;
    bool pluginOn_ = true, titleSinkOn_ = true, sequenceSinkOn_ = true;
    bool readsBack_ = true, stayDetached_ = false;
    Steinberg::int32 attached_ = 1;
    std::vector<SVS::SVSNote> notes_;
    std::vector<SVS::SVSNote> spare_;  ///< the list before, its room reused by the next read
    std::string title_;
    int setHostCalls_ = 0, attachCalls_ = 0, titleChangedCalls_ = 0, sequenceChangedCalls_ = 0,
        sequenceReads_ = 0;
};

} // namespace Sim
