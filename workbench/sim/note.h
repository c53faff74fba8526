// A note event inside a part: pitch, place, the host's "lyrics" and "phoneme"
// texts and the node's attributes. Every change to its texts or attributes is
// journaled while the project has an edit open.
#pragma once

#include "workbench/sim/node.h"

namespace Sim {

class Note : public Node, public Steinberg::INoteEvent, public Steinberg::INoteText
{
public:
    Note (const std::string& name, Project* project);

    void setPitch (Steinberg::int32 pitch) { pitch_ = pitch; }
    Steinberg::int32 pitch () const { return pitch_; }
    void enableNoteEvent (bool on) { noteEventOn_ = on; }
    void enableNoteText (bool on) { noteTextOn_ = on; }
    /** resolveAnchor returns null instead of the anchor it is given. */
    void setResolveNull (bool on) { resolveNull_ = on; }

    // The host's texts ("lyrics", "phoneme") as the test sees them.
    bool hasText (const std::string& key) const { return values_.has (key.c_str ()); }
    std::string text (const std::string& key) const;
    void setText (const std::string& key, const std::string& utf8);
    void setRawText (const std::string& key, std::u16string text);
    void removeText (const std::string& key);
    std::string lyric () const { return text ("lyrics"); }
    std::string phoneme () const { return text ("phoneme"); }

    // What the last setValue brought along.
    Steinberg::IEditAnchor* lastAnchor () const { return lastAnchor_; }
    Steinberg::IProjectEditContext* lastContext () const { return lastContext_; }
    int setValueCalls () const { return setValueCalls_; }

    // INoteEvent
    Steinberg::int32 PLUGIN_API getPitch () override;
    // INoteText
    Steinberg::FUnknown* PLUGIN_API resolveAnchor (Steinberg::IEditAnchor* partAnchor) override;
    Steinberg::tresult PLUGIN_API setValue (const char* key, const Steinberg::FVariant* value,
                                            Steinberg::IEditAnchor* anchor,
                                            Steinberg::IProjectEditContext* context) override;
    Steinberg::tresult PLUGIN_API getValue (const char* key, Steinberg::FVariant* value) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;
    bool journaled () const override { return true; }

private:
    void changeText (const std::string& key, const Slot& value);

    Steinberg::int32 pitch_ = 60;
    bool noteEventOn_ = true, noteTextOn_ = true, resolveNull_ = false;
    AttributeStore values_;
    Steinberg::IEditAnchor* lastAnchor_ = nullptr;
    Steinberg::IProjectEditContext* lastContext_ = nullptr;
    int setValueCalls_ = 0;
};

} // namespace Sim
