#include "workbench/sim/folder.h"

#include "workbench/sim/track.h"

namespace Sim {

Folder::Folder (const std::string& name, Project* project, bool isFolder)
: Node (isFolder ? "Folder" : "Root", name,
        isFolder ? std::vector<std::string> {"folder"} : std::vector<std::string> {}, project)
{
}

Folder& Folder::addFolder (const std::string& name)
{
    return adopt (std::make_unique<Folder> (name, project ()));
}

Track& Folder::addInstrumentTrack (const std::string& name)
{
    return adopt (std::make_unique<Track> (name, project (), Track::Instrument));
}

Track& Folder::addMidiTrack (const std::string& name, bool withTrackNode)
{
    auto& t = adopt (std::make_unique<Track> (name, project (), Track::Midi));
    t.enableTrackNode (withTrackNode);
    return t;
}

} // namespace Sim
