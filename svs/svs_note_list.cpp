#include "svs/svs_note_list.h"

#include <cstring>
#include <stdexcept>

namespace Zelmor {

using Steinberg::int32;
using Steinberg::tresult;
using Steinberg::uint32;

namespace {
// Synthesisers expect -1 here, whatever kNoInterface is on a platform.
constexpr tresult kNoSuchFace = -1;
}

tresult PLUGIN_API SVSNoteListImpl::queryInterface (const Steinberg::TUID iid, void** obj)
{
    if (!obj)
        return kNoSuchFace;
    if (iid && (Steinberg::FUnknownPrivate::iidEqual (iid, Steinberg::FUnknown::iid) ||
                Steinberg::FUnknownPrivate::iidEqual (iid, SVS::INoteList::iid)))
    {
        addRef ();
        *obj = static_cast<SVS::INoteList*> (this);
        return Steinberg::kResultOk;
    }
    *obj = nullptr;
    return kNoSuchFace;
}

uint32 PLUGIN_API SVSNoteListImpl::addRef ()
{
    return static_cast<uint32> (refCount.fetch_add (1) + 1);
}

uint32 PLUGIN_API SVSNoteListImpl::release ()
{
    const int32 now = refCount.fetch_sub (1) - 1;
    if (now == 0)
        delete this;
    return static_cast<uint32> (now);
}

int32 PLUGIN_API SVSNoteListImpl::getNoteCount ()
{
    return static_cast<int32> (notes.size ());
}

int32 PLUGIN_API SVSNoteListImpl::size ()
{
    return getNoteCount ();
}

tresult PLUGIN_API SVSNoteListImpl::getNote (int32 index, SVS::SVSNote* out)
{
    if (index < 0)
        return 1;
    // Thrown here rather than by at(): callers rely on the text "vector".
    if (static_cast<size_t> (index) >= notes.size ())
        throw std::out_of_range ("vector");
    if (!out)
        return 1;
    std::memcpy (out, &notes[static_cast<size_t> (index)], sizeof (SVS::SVSNote));
    return 0;
}

tresult PLUGIN_API SVSNoteListImpl::getNoteCopy (int32 index, SVS::SVSNote* out)
{
    return getNote (index, out);
}

tresult PLUGIN_API SVSNoteListImpl::addNote (const SVS::SVSNote* note)
{
    if (!note || notes.size () >= notes.max_size ())
        return 1;
    notes.push_back (*note);
    return 0;
}

} // namespace Zelmor
