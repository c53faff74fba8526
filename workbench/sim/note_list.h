// The synthesiser's own note list and text sink: what it hands the agent's
// host object to be filled.
#pragma once

#include "workbench/sim/object.h"

#include "svs/svs_interfaces.h"

#include <string>
#include <vector>

namespace Sim {

class NoteList : public Object, public SVS::INoteList
{
public:
    explicit NoteList (const std::string& name);

    const std::vector<SVS::SVSNote>& notes () const { return notes_; }
    void clear () { notes_.clear (); }
    void add (const SVS::SVSNote& note) { notes_.push_back (note); }
    /** Starts empty in `buffer`'s room: a synthesiser reads a list of the same length again and again. */
    void reuse (std::vector<SVS::SVSNote> buffer)
    {
        buffer.clear ();
        notes_ = std::move (buffer);
    }
    /** What was added, taken out of the list. */
    std::vector<SVS::SVSNote> take () { return std::move (notes_); }

    Steinberg::int32 PLUGIN_API getNoteCount () override;
    Steinberg::int32 PLUGIN_API size () override;
    Steinberg::tresult PLUGIN_API getNote (Steinberg::int32 index, SVS::SVSNote* out) override;
    Steinberg::tresult PLUGIN_API getNoteCopy (Steinberg::int32 index, SVS::SVSNote* out) override;
    Steinberg::tresult PLUGIN_API addNote (const SVS::SVSNote* note) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    Steinberg::tresult copyOut (Steinberg::int32 index, SVS::SVSNote* out) const;
    std::vector<SVS::SVSNote> notes_;
};

class TextSink : public Object, public SVS::ISvsTextSink
{
public:
    explicit TextSink (const std::string& name);

    const std::string& text () const { return text_; }
    int calls () const { return calls_; }

    Steinberg::tresult PLUGIN_API setText (const char* bytes, Steinberg::int64 length) override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::string text_;
    int calls_ = 0;
};

} // namespace Sim
