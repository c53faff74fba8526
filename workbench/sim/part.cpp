#include "workbench/sim/part.h"

#include "workbench/sim/note.h"

namespace Sim {

using namespace Steinberg;

PartAnchor::PartAnchor (const std::string& partName) : Object ("PartAnchor", partName, Side::Host) {}

bool PartAnchor::query (const TUID iid, void** obj)
{
    return offer<IEditAnchor> (iid, obj, this) || offerUnknown (iid, obj, static_cast<IEditAnchor*> (this));
}

Part::Part (const std::string& name, Project* project)
: Node ("Part", name, {"midi", "part"}, project), anchor_ (name)
{
}

Note& Part::addNote (double start, double end, int32 pitch, const std::string& lyric)
{
    auto& n = adopt (std::make_unique<Note> (name () + " note " + std::to_string (++noteCount_), project ()));
    n.setTimes (start, end);
    n.setPitch (pitch);
    if (!lyric.empty ())
        n.setText ("lyrics", lyric);
    return n;
}

int32 PLUGIN_API Part::getTranspose ()
{
    CallLog::record (Side::Host, "IMidiPart::getTranspose", name ());
    return transpose_;
}

bool Part::query (const TUID iid, void** obj)
{
    return (midiPartOn_ && offer<IMidiPart> (iid, obj, this)) || Node::query (iid, obj);
}

} // namespace Sim
