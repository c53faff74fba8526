// One SVS host object per synthesiser plug-in in the project, each titled with
// where its plug-in sits.
#pragma once

#include "host/project_interfaces.h"
#include "sync/project_walk.h"

#include <string>

namespace Zelmor {

struct SVSHostList;
class SVSHostImpl;

/** "Cantorela Beta Agent: <project> - <slot> - <track>" */
std::string hostTitle (const PluginLabels& labels);

/** Makes `svsHosts` match the plug-ins of `project`: drops hosts whose plug-in is gone, retitles the others,
    creates and connects hosts for new plug-ins. */
void bindPlugins (Steinberg::IHostProject* project, SVSHostList& svsHosts);

/** Cuts a host off its project and plug-in; the plug-in hears setHost(null). The host stays listed. */
void detachHost (SVSHostImpl& host);

void detachAllHosts (SVSHostList& svsHosts);

} // namespace Zelmor
