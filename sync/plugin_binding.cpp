#include "sync/plugin_binding.h"

#include "svs/svs_host.h"
#include "svs/svs_host_list.h"
#include "sync/host_index.h"

#include <unordered_set>
#include <vector>

using namespace Steinberg;

namespace Zelmor {
namespace {

const std::string& agentDisplayName ()
{
    static const std::string name = "Cantorela Beta Agent";
    return name;
}

// The plug-in is gone from the project: forget it without telling it anything.
void disconnect (SVSHostImpl& host)
{
    host.setProject (nullptr);
    host.setSequenceSink (nullptr);
    host.setTitleSink (nullptr);
    host.setPlugin (nullptr);
}

void connect (SVSHostImpl& host, ISvsPlugin* plugin)
{
    plugin->setHost (static_cast<SVS::IHost*> (&host));
    host.setPlugin (plugin);
    // Borrowed: the query's reference goes back at once.
    host.setTitleSink (queryHost<ISvsTitleSink> (plugin).get ());
    host.setSequenceSink (queryHost<ISvsSequenceSink> (plugin).get ());
}

} // namespace

std::string hostTitle (const PluginLabels& labels)
{
    return agentDisplayName () + ": " + labels.projectName + " - " + labels.slotName + " - " + labels.trackName;
}

void bindPlugins (IHostProject* project, SVSHostList& svsHosts)
{
    auto root = projectRoot (project);
    if (!root)
        return;
    PluginList plugins;
    collectSvsPlugins (root.get (), plugins);

    std::vector<PluginLabels> labels;
    labels.reserve (plugins.size ());
    for (ISvsPlugin* plugin : plugins)
        labels.push_back (readPluginLabels (project, plugin));

    // Looked up by pointer in sets, not by a search per host: a pass stays linear in the plug-ins.
    std::unordered_set<ISvsPlugin*> present;
    for (const auto& plugin : labels)
        present.insert (plugin.plugin.get ());
    std::vector<std::size_t> gone;
    for (std::size_t index = 0; index < svsHosts.hosts.size (); ++index)
    {
        auto& host = *svsHosts.hosts[index];
        if (present.count (host.getPlugin ()) != 0)
            continue;
        disconnect (host);
        gone.push_back (index);
    }
    for (auto it = gone.rbegin (); it != gone.rend (); ++it)
        svsHosts.hosts.erase (svsHosts.hosts.begin () + static_cast<std::ptrdiff_t> (*it));

    HostIndex index (svsHosts);
    for (const auto& plugin : labels)
    {
        const std::string title = hostTitle (plugin);
        if (auto* host = index.find (plugin.plugin.get ()))
        {
            host->setTitleText (title);
            if (auto sink = queryHost<ISvsTitleSink> (plugin.plugin.get ()))
                sink->titleChanged ();
            continue;
        }
        SVSHostPtr host (new SVSHostImpl (svsHosts.productName, svsHosts.productVersion, svsHosts.productVendor));
        host->setTitleText (title);
        host->setProject (plugin.project);
        if (plugin.plugin)
        {
            connect (*host, plugin.plugin.get ());
            index.add (*host);
            svsHosts.hosts.push_back (std::move (host));
        }
    }
}

void detachHost (SVSHostImpl& host)
{
    host.setProject (nullptr);
    host.setSequenceSink (nullptr);
    host.setTitleSink (nullptr);
    if (auto* plugin = host.getPlugin ())
    {
        plugin->setHost (nullptr);
        host.setPlugin (nullptr);
    }
}

void detachAllHosts (SVSHostList& svsHosts)
{
    for (auto& host : svsHosts.hosts)
        detachHost (*host);
}

} // namespace Zelmor
