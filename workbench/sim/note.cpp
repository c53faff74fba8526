#include "workbench/sim/note.h"

#include "workbench/sim/project.h"

namespace Sim {

using namespace Steinberg;

Note::Note (const std::string& name, Project* project) : Node ("Note", name, {}, project) {}

std::string Note::text (const std::string& key) const
{
    const Slot* held = values_.get (key.c_str ());
    return held ? held->value ().toString () : std::string ();
}

void Note::setText (const std::string& key, const std::string& utf8)
{
    changeText (key, texts ().hold (Value::text (utf8)));
}

void Note::setRawText (const std::string& key, std::u16string text)
{
    changeText (key, texts ().hold (Value (std::move (text))));
}

void Note::removeText (const std::string& key)
{
    changeText (key, Slot {});
}

void Note::changeText (const std::string& key, const Slot& value)
{
    change (values_, values_.place (texts (), key.c_str ()), value, true);
}

int32 PLUGIN_API Note::getPitch ()
{
    CallLog::record (Side::Host, "INoteEvent::getPitch", name ());
    return pitch_;
}

FUnknown* PLUGIN_API Note::resolveAnchor (IEditAnchor* partAnchor)
{
    CallLog::record (Side::Host, "INoteText::resolveAnchor", name ());
    return resolveNull_ ? nullptr : partAnchor;
}

tresult PLUGIN_API Note::setValue (const char* key, const FVariant* value, IEditAnchor* anchor,
                                   IProjectEditContext* context)
{
    CallLog::record (Side::Host, "INoteText::setValue", name ());
    ++setValueCalls_;
    lastAnchor_ = anchor;
    lastContext_ = context;
    if (!key || !value)
        return kInvalidArgument;
    const uint32_t entry = values_.place (texts (), key);
    change (values_, entry, texts ().hold (*value, values_.at (entry).value), true);
    return kResultOk;
}

tresult PLUGIN_API Note::getValue (const char* key, FVariant* value)
{
    CallLog::record (Side::Host, "INoteText::getValue", name ());
    if (!key || !value)
        return kInvalidArgument;
    const Slot* held = values_.get (key);
    if (!held)
        return kResultFalse;
    held->toVariant (*value, borrowedStrings ());
    return kResultOk;
}

bool Note::query (const TUID iid, void** obj)
{
    return (noteEventOn_ && offer<INoteEvent> (iid, obj, this))
           || (noteTextOn_ && offer<INoteText> (iid, obj, this)) || Node::query (iid, obj);
}

} // namespace Sim
