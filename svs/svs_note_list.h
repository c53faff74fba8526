// The synthesiser's note list: a vector of SVSNote records behind INoteList.
#pragma once

#include "svs/svs_interfaces.h"

#include <atomic>
#include <vector>

namespace Zelmor {

// Used two ways: embedded in a host object (its count is never touched) and as
// a short-lived stack list that carries a new sequence to a host object. Both
// start with a count of 0, so an addRef/release pair from a receiver would
// delete an object that is not on the heap: receivers must leave the count alone.
class SVSNoteListImpl final : public SVS::INoteList
{
public:
    SVSNoteListImpl () = default;
    SVSNoteListImpl (const SVSNoteListImpl&) = delete;
    SVSNoteListImpl& operator= (const SVSNoteListImpl&) = delete;
    ~SVSNoteListImpl () = default;

    // FUnknown: knows FUnknown and INoteList only.
    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef () override;
    Steinberg::uint32 PLUGIN_API release () override;

    // INoteList
    Steinberg::int32 PLUGIN_API getNoteCount () override;
    Steinberg::int32 PLUGIN_API size () override;
    /** Negative index: 1, record untouched. Index at or past the count:
        std::out_of_range("vector"). The two bad cases differ on purpose. */
    Steinberg::tresult PLUGIN_API getNote (Steinberg::int32 index, SVS::SVSNote* out) override;
    Steinberg::tresult PLUGIN_API getNoteCopy (Steinberg::int32 index, SVS::SVSNote* out) override;
    /** 1 without change once the container is at its largest size. */
    Steinberg::tresult PLUGIN_API addNote (const SVS::SVSNote* note) override;

    std::vector<SVS::SVSNote>& records () { return notes; }
    const std::vector<SVS::SVSNote>& records () const { return notes; }
    Steinberg::int32 referenceCount () const { return refCount.load (); }

private:
    std::atomic<Steinberg::int32> refCount {0};
    std::vector<SVS::SVSNote> notes;
};

} // namespace Zelmor
