// One synthesiser's track as a list of notes on the project's time line, with
// lyrics and phonemes settled.
#pragma once

#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"
#include "sequence/sequence_note.h"
#include "sync/host_ref.h"

#include <vector>

namespace Zelmor {

/** The notes of a track and the host objects that must outlive them for the pass. */
struct TrackNotes
{
    std::vector<SequenceNote> notes;
    HostRef<Steinberg::FUnknown> timeContext;
    std::vector<HostRef<Steinberg::IEditAnchor>> anchors;
};

/** Empty when the plug-in's track can't be read. */
TrackNotes collectTrackNotes (Steinberg::IHostProject* project, Steinberg::IProjectNode* root,
                              Steinberg::ISvsPlugin* plugin, bool markSeen);

} // namespace Zelmor
