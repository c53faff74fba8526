#include "workbench/sim/note.h"

#include "workbench/sim/project.h"

namespace Sim {

using namespace Steinberg;

Note::Note (const std::string& name, Project* project) : Node ("Note", name, {}, project) {}

std::string Note::text (const std::string& key) const
{
    auto it = values_.find (key);
    return it == values_.end () ? std::string () : it->second.toString ();
}

void Note::setText (const std::string& key, const std::string& utf8)
{
    changeText (key, Value::text (utf8));
}

void Note::setRawText (const std::string& key, std::u16string text)
{
    changeText (key, Value (std::move (text)));
}

void Note::removeText (const std::string& key)
{
    changeText (key, std::nullopt);
}

void Note::changeText (const std::string& key, std::optional<Value> value)
{
    std::optional<Value> before;
    if (auto it = values_.find (key); it != values_.end ())
        before = it->second;
    if (project ())
        project ()->journal (*this, Change::Text, key, before, value);
    restoreText (key, value);
}

void Note::restoreText (const std::string& key, const std::optional<Value>& value)
{
    if (value)
        values_[key] = *value;
    else
        values_.erase (key);
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
    changeText (key, Value::fromVariant (*value));
    return kResultOk;
}

tresult PLUGIN_API Note::getValue (const char* key, FVariant* value)
{
    CallLog::record (Side::Host, "INoteText::getValue", name ());
    if (!key || !value)
        return kInvalidArgument;
    auto it = values_.find (key);
    if (it == values_.end ())
        return kResultFalse;
    it->second.toVariant (*value, borrowedStrings ());
    return kResultOk;
}

bool Note::query (const TUID iid, void** obj)
{
    return (noteEventOn_ && offer<INoteEvent> (iid, obj, this))
           || (noteTextOn_ && offer<INoteText> (iid, obj, this)) || Node::query (iid, obj);
}

} // namespace Sim
