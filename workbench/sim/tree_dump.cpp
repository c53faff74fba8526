#include "workbench/sim/tree_dump.h"

#include "workbench/sim/project.h"

#include <cstdio>

namespace Sim {
namespace {

std::string attrs (const Node& n)
{
    std::string out;
    for (auto& [key, value] : n.attributes ())
        out += " " + key + "=" + value.toString ();
    return out;
}

std::string times (const Node& n)
{
    char buf[64];
    std::snprintf (buf, sizeof buf, " %.3f-%.3f", n.start (), n.end ());
    return buf;
}

void dumpDevices (const DeviceNode& d, const std::string& indent, std::string& out)
{
    for (std::size_t i = 0; i < d.childCount (); ++i)
    {
        const DeviceNode* c = d.child (i);
        if (!c)
        {
            out += indent + "(null device)\n";
            continue;
        }
        if (auto* slot = dynamic_cast<const InsertSlot*> (c))
            out += indent + "insert '" + slot->name () + "'" + (slot->plugin () ? " [plug-in]" : " [empty]") + "\n";
        else
            out += indent + "device " + c->deviceName () + "\n";
        dumpDevices (*c, indent + "  ", out);
    }
}

void dumpNode (const Node& n, const std::string& indent, std::string& out)
{
    std::string line = indent + n.kind () + " '" + n.name () + "'";
    if (auto* note = dynamic_cast<const Note*> (&n))
    {
        line += times (n) + " pitch " + std::to_string (note->pitch ());
        if (note->hasText ("lyrics"))
            line += " lyrics=\"" + note->lyric () + "\"";
        if (note->hasText ("phoneme"))
            line += " phoneme=\"" + note->phoneme () + "\"";
    }
    else if (dynamic_cast<const Part*> (&n))
        line += times (n);
    if (n.muted ())
        line += " muted";
    out += line + attrs (n) + "\n";
    if (auto* track = dynamic_cast<const Track*> (&n))
        dumpDevices (const_cast<Track*> (track)->devices (), indent + "  ", out);
    for (Node* c : n.childNodes ())
        dumpNode (*c, indent + "  ", out);
}

} // namespace

std::string dumpTree (Project& project)
{
    std::string out;
    dumpNode (project.root (), "", out);
    return out;
}

} // namespace Sim
