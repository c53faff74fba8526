// MIDI parts: "midi" and "part" at once; their children are note events.
#pragma once

#include "workbench/sim/node.h"

namespace Sim {

class Note;

/** What the project's getContext gives for a part: the anchor of edits in it. */
class PartAnchor : public Object, public Steinberg::IEditAnchor
{
public:
    explicit PartAnchor (const std::string& partName);
    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;
};

class Part : public Node, public Steinberg::IMidiPart
{
public:
    Part (const std::string& name, Project* project);

    void setTranspose (Steinberg::int32 semitones) { transpose_ = semitones; }
    void enableMidiPart (bool on) { midiPartOn_ = on; }
    PartAnchor& anchor () { return anchor_; }
    /** The project's getContext gives null for this part. */
    void setContextNull (bool on) { contextNull_ = on; }
    bool contextNull () const { return contextNull_; }

    /** A note event; `start` and `end` in seconds within the part's content. */
    Note& addNote (double start, double end, Steinberg::int32 pitch, const std::string& lyric = {});

    Steinberg::int32 PLUGIN_API getTranspose () override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    Steinberg::int32 transpose_ = 0;
    bool midiPartOn_ = true;
    bool contextNull_ = false;
    PartAnchor anchor_;
    int noteCount_ = 0;
};

} // namespace Sim
