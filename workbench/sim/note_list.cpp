#include "workbench/sim/note_list.h"

namespace Sim {

using namespace Steinberg;

NoteList::NoteList (const std::string& name) : Object ("NoteList", name, Side::Plugin) {}

int32 PLUGIN_API NoteList::getNoteCount ()
{
    CallLog::record (Side::Plugin, "INoteList::getNoteCount", name ());
    return static_cast<int32> (notes_.size ());
}

int32 PLUGIN_API NoteList::size ()
{
    CallLog::record (Side::Plugin, "INoteList::size", name ());
    return static_cast<int32> (notes_.size ());
}

tresult NoteList::copyOut (int32 index, SVS::SVSNote* out) const
{
    if (!out || index < 0 || static_cast<std::size_t> (index) >= notes_.size ())
        return kResultFalse;
    *out = notes_[static_cast<std::size_t> (index)];
    return kResultOk;
}

tresult PLUGIN_API NoteList::getNote (int32 index, SVS::SVSNote* out)
{
    CallLog::record (Side::Plugin, "INoteList::getNote", name ());
    return copyOut (index, out);
}

tresult PLUGIN_API NoteList::getNoteCopy (int32 index, SVS::SVSNote* out)
{
    CallLog::record (Side::Plugin, "INoteList::getNoteCopy", name ());
    return copyOut (index, out);
}

tresult PLUGIN_API NoteList::addNote (const SVS::SVSNote* note)
{
    CallLog::record (Side::Plugin, "INoteList::addNote", name ());
    if (!note)
        return kInvalidArgument;
    notes_.push_back (*note);
    return kResultOk;
}

bool NoteList::query (const TUID iid, void** obj)
{
    return offer<SVS::INoteList> (iid, obj, this) || offerUnknown (iid, obj, static_cast<SVS::INoteList*> (this));
}

TextSink::TextSink (const std::string& name) : Object ("TextSink", name, Side::Plugin) {}

tresult PLUGIN_API TextSink::setText (const char* bytes, int64 length)
{
    CallLog::record (Side::Plugin, "ISvsTextSink::setText", name ());
    ++calls_;
    text_ = bytes && length > 0 ? std::string (bytes, static_cast<std::size_t> (length)) : std::string ();
    return kResultOk;
}

bool TextSink::query (const TUID iid, void** obj)
{
    return offerUnknown (iid, obj, static_cast<SVS::ISvsTextSink*> (this));
}

} // namespace Sim
