// Containers of tracks: the project's root and "folder" nodes.
#pragma once

#include "workbench/sim/node.h"

namespace Sim {

class Track;

class Folder : public Node
{
public:
    /** `isFolder` false makes the root, which answers no type. */
    Folder (const std::string& name, Project* project, bool isFolder = true);

    Folder& addFolder (const std::string& name);
    /** An "instrument" track with a device tree, in musical time. */
    Track& addInstrumentTrack (const std::string& name);
    /** A plain "midi" track; `withTrackNode` lets it answer ITrackNode too. */
    Track& addMidiTrack (const std::string& name, bool withTrackNode = false);
};

} // namespace Sim
