// The binary contract with the host and the synthesisers, which the simulated host can't
// check, since it is built from the same declarations: the 16 bytes of each interface
// identifier, in memory order, and the position in its table of every operation we call on
// a closed interface, or that the host calls on us. Under the Itanium C++ ABI a pointer to
// a virtual member function holds 1 + the byte offset of its entry in the table, which gives
// the position without building an object.
#include "host/agent_interfaces.h"
#include "host/edit_step_interfaces.h"
#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"
#include "host/service_interfaces.h"
#include "svs/svs_interfaces.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

std::string hex (const TUID& id)
{
    std::string out;
    char buf[4];
    for (int i = 0; i < 16; ++i)
    {
        std::snprintf (buf, sizeof buf, i ? " %02X" : "%02X", static_cast<unsigned char> (id[i]));
        out += buf;
    }
    return out;
}

// Where the SDK lays identifiers out as COM GUIDs (Windows), its first three
// fields, 4, 2 and 2 bytes, lie in memory little-endian.
std::string inMemoryOrder (const std::string& bytes)
{
#if COM_COMPATIBLE
    auto at = [&] (int i) { return bytes.substr (static_cast<size_t> (i) * 3, 2) + " "; };
    return at (3) + at (2) + at (1) + at (0) + at (5) + at (4) + at (7) + at (6) + bytes.substr (24);
#else
    return bytes;
#endif
}

// Both the inline constant and the FUID filled at load must carry the bytes.
#define EXPECT_IID(Interface, bytes)                                         \
    do                                                                       \
    {                                                                        \
        EXPECT_EQ (hex (Interface##_iid), inMemoryOrder (bytes)) << #Interface; \
        const TUID& loaded = Interface::iid;                                 \
        EXPECT_EQ (hex (loaded), inMemoryOrder (bytes)) << #Interface;       \
    } while (0)

TEST (Identifiers, AreTheAgreedBytes)
{
    // The host's services.
    EXPECT_IID (IHostServices, "EE C8 96 83 80 DB 43 36 91 77 27 3E 13 8A 76 3B");
    EXPECT_IID (IHostProductInfo, "A8 E1 A5 2A 8E 24 41 6A B9 59 21 74 24 43 FB 74");
    EXPECT_IID (IActionHandlerRegistry, "76 2F 3F 61 11 D1 41 15 92 F9 7A C6 F2 39 46 0F");
    EXPECT_IID (IModuleUnloadSink, "A4 2A 91 19 16 1E 45 47 98 A2 6F B7 69 14 0E 24");
    EXPECT_IID (IIdleHandlerRegistry, "9E 87 18 47 F1 AB 47 76 A0 6C 6F 94 5D 7F DD 4D");
    EXPECT_IID (IProjectManager, "3D 7C 28 13 8A BF 4A AE A2 3A 11 BF 37 21 4C 36");

    // The faces the agent implements.
    EXPECT_IID (IActionHandler, "9F C1 7B EB 3A 51 40 77 A2 5A 77 26 D3 D3 D7 11");
    EXPECT_IID (IIdleHandler, "D7 0B BB 58 C8 05 45 B8 AB 82 64 18 0B 67 3A 84");
    EXPECT_IID (IProjectNotification, "98 F6 9A C5 57 8D 4A 22 B8 E0 27 81 C0 6C FF 25");
    EXPECT_IID (IProjectNotification2, "7A 43 C2 8E BA C2 48 D1 B7 2D 1A A2 20 FE BF 10");
    EXPECT_IID (IProjectNotification3, "04 A1 D4 38 48 2A 4D 8C 8C A7 6E D5 06 40 A9 14");
    EXPECT_IID (IProjectStorageNotification, "D3 61 D3 32 60 4A 4D F7 83 B1 7B 91 A3 51 84 DB");
    EXPECT_IID (IProjectEditHook, "ED C5 AF 8F AA BD 46 E8 B8 68 39 CF E1 4C AB 1F");

    // The project model and the synthesiser plug-in as the host holds it.
    EXPECT_IID (IProjectNode, "7A 6F 99 9F BD BC 4B CC AC 40 3D AB AC E8 A1 71");
    EXPECT_IID (ITrackNode, "78 49 F1 7E 12 12 49 B2 82 F6 24 25 BA CC 5E 5A");
    EXPECT_IID (IInsertSlot, "AA 9B D1 AE 0E F9 42 29 B7 9F 96 F0 A9 BB 03 1D");
    EXPECT_IID (IPluginHolder, "07 42 C1 BD A6 B4 4F FA AB 83 8E D1 20 A7 D8 95");
    EXPECT_IID (ISvsPlugin, "67 2A D7 37 6C 79 45 82 99 F1 70 45 CA D4 AB A4");
    EXPECT_IID (IMidiPart, "12 78 06 AF 82 6D 4B 67 BB 4E 6A 07 48 E3 2B C3");
    EXPECT_IID (INoteEvent, "28 0D 58 4E 88 EF 43 EC 90 8F 7C 22 AE 69 94 FB");
    EXPECT_IID (INoteText, "ED B0 D1 BA 2E 32 48 D9 82 2B 3D C0 69 64 28 C9");
    EXPECT_IID (IEditAnchor, "50 6D DF 3C 71 9D 4A 51 83 8C 68 43 00 2C 2B EC");
    EXPECT_IID (ISvsTitleSink, "FF A1 59 AA 5B E9 4F EB 98 DF FE A8 F6 25 FB 55");
    EXPECT_IID (ISvsSequenceSink, "91 A2 71 1B 0F 26 46 1E B8 82 D4 BB 94 BC 1F 1E");

    // What a synthesiser asks of the SVS host object.
    using namespace SVS;
    EXPECT_IID (IHost, "55 D1 F9 15 06 53 4B 40 99 5B E9 02 56 6F D1 B9");
    EXPECT_IID (IHostContextProvider, "9A 4A 7F 18 99 C3 46 7E AF 22 42 9D A7 36 36 5E");
    EXPECT_IID (IHostProductInformationProvider, "D9 42 C2 27 24 80 4C 2F A6 22 4F 90 BB F7 FB 1F");
    EXPECT_IID (IMessageEndpoint, "5F 8B AE 4E 79 05 4D 7E 91 97 9B 65 DC F3 59 45");
    EXPECT_IID (ISequenceStorage, "5E 34 C7 5D 20 C7 43 1E 8C 21 F8 32 8A 59 AA 40");
    EXPECT_IID (INoteList, "B1 46 03 BD E2 73 4A 12 86 A8 6E 09 7A DD BD AC");
}

template <class C, class F>
long positionOf (F C::*member)
{
    struct Rep
    {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    };
    static_assert (sizeof (member) == sizeof (Rep), "Itanium member function pointer");
    Rep rep;
    std::memcpy (&rep, &member, sizeof rep);
    if ((rep.ptr & 1) == 0 || rep.adj != 0)
        return -1;  // not virtual, or not in the primary table
    return static_cast<long> ((rep.ptr - 1) / sizeof (void*));
}

#define EXPECT_POSITION(Interface, op, position) \
    EXPECT_EQ (positionOf (&Interface::op), position) << #Interface "::" #op

TEST (TablePositions, AreTheAgreedOnes)
{
    // The host's services.
    EXPECT_POSITION (IHostServices, getService, 3);
    EXPECT_POSITION (IHostProductInfo, getProductString1, 3);
    EXPECT_POSITION (IHostProductInfo, getProductString2, 4);
    EXPECT_POSITION (IHostProductInfo, getProductString3, 5);
    EXPECT_POSITION (IActionHandlerRegistry, addHandler, 5);
    EXPECT_POSITION (IActionHandlerRegistry, removeHandler, 6);
    EXPECT_POSITION (IModuleUnloadSink, moduleTerminating, 4);
    EXPECT_POSITION (IIdleHandlerRegistry, addHandler, 4);
    EXPECT_POSITION (IIdleHandlerRegistry, removeHandler, 5);
    EXPECT_POSITION (IProjectManager, getProjectCount, 3);
    EXPECT_POSITION (IProjectManager, getProject, 4);
    EXPECT_POSITION (IProjectManager, getActiveProject, 5);
    EXPECT_POSITION (IProjectManager, addNotification, 6);
    EXPECT_POSITION (IProjectManager, removeNotification, 7);

    // The faces the agent implements.
    EXPECT_POSITION (IActionHandler, handleAction, 3);
    EXPECT_POSITION (IIdleHandler, onIdle, 3);
    EXPECT_POSITION (IProjectNotification3, onProjectActivated, 3);
    EXPECT_POSITION (IProjectNotification3, onProjectDeactivated, 4);
    EXPECT_POSITION (IProjectNotification3, onProjectAdded, 5);
    EXPECT_POSITION (IProjectNotification3, onProjectRemoved, 6);
    EXPECT_POSITION (IProjectNotification3, onProjectQuery, 7);
    EXPECT_POSITION (IProjectNotification3, onProjectNoOp, 8);
    EXPECT_POSITION (IProjectNotification3, onProjectRefresh, 9);
    EXPECT_POSITION (IProjectStorageNotification, onProjectStorage, 3);
    EXPECT_POSITION (IProjectEditHook, onProjectEdit, 3);
    EXPECT_POSITION (IEditStep, getStepState, 3);
    EXPECT_POSITION (IEditStep, undo, 4);
    EXPECT_POSITION (IEditStep, redo, 5);
    EXPECT_POSITION (IEditStep, reportChange, 6);
    EXPECT_POSITION (IStepChangeSink, markChanged, 5);

    // The project model.
    EXPECT_POSITION (IHostProject, getContext, 16);
    EXPECT_POSITION (IHostProject, isBusy, 18);
    EXPECT_POSITION (IHostProject, addStorageNotification, 19);
    EXPECT_POSITION (IHostProject, removeStorageNotification, 20);
    EXPECT_POSITION (IProjectNode, isType, 3);
    EXPECT_POSITION (IProjectNode, setAttribute, 6);
    EXPECT_POSITION (IProjectNode, getAttribute, 7);
    EXPECT_POSITION (IProjectNode, hasAttribute, 8);
    EXPECT_POSITION (IProjectNode, removeAttribute, 9);
    EXPECT_POSITION (IProjectNode, getName, 10);
    EXPECT_POSITION (IProjectNode, isMuted, 14);
    EXPECT_POSITION (IProjectNode, getStart, 20);
    EXPECT_POSITION (IProjectNode, getEnd, 24);
    EXPECT_POSITION (IProjectNode, getContentStart, 26);
    EXPECT_POSITION (IProjectNode, getChildren, 28);
    EXPECT_POSITION (INodeIterator, next, 3);
    EXPECT_POSITION (INodeIterator, isDone, 4);
    EXPECT_POSITION (ITimeContext, linearToMusical, 6);
    EXPECT_POSITION (ITimeContext, musicalToLinear, 7);
    EXPECT_POSITION (ITrackNode, getTimeDomain, 4);
    EXPECT_POSITION (ITrackNode, getDeviceTree, 7);
    EXPECT_POSITION (IDeviceNode, getName, 3);
    EXPECT_POSITION (IDeviceNode, getChildCount, 10);
    EXPECT_POSITION (IDeviceNode, getChild, 11);
    EXPECT_POSITION (IInsertSlot, getDisplayName, 4);
    EXPECT_POSITION (IPluginHolder, getPlugin, 3);
    EXPECT_POSITION (IMidiPart, getTranspose, 3);
    EXPECT_POSITION (INoteEvent, getPitch, 6);
    EXPECT_POSITION (INoteText, resolveAnchor, 4);
    EXPECT_POSITION (INoteText, setValue, 5);
    EXPECT_POSITION (INoteText, getValue, 6);
    EXPECT_POSITION (IProjectEditContext, addEditStep, 13);

    // The synthesiser's side.
    EXPECT_POSITION (ISvsPlugin, setHost, 3);
    EXPECT_POSITION (ISvsPlugin, attach, 4);
    EXPECT_POSITION (ISvsPlugin, isAttached, 5);
    EXPECT_POSITION (ISvsTitleSink, titleChanged, 3);
    EXPECT_POSITION (ISvsSequenceSink, sequenceChanged, 3);
    EXPECT_POSITION (SVS::ISvsTextSink, setText, 5);
    EXPECT_POSITION (SVS::ISvsMessage, getSize, 3);
    EXPECT_POSITION (SVS::ISvsMessage, read, 4);
    EXPECT_POSITION (SVS::INoteList, getNoteCount, 3);
    EXPECT_POSITION (SVS::INoteList, size, 4);
    EXPECT_POSITION (SVS::INoteList, getNote, 5);
    EXPECT_POSITION (SVS::INoteList, getNoteCopy, 6);
    EXPECT_POSITION (SVS::INoteList, addNote, 7);
    EXPECT_POSITION (SVS::IHost, getTitle, 3);
    EXPECT_POSITION (SVS::IHostContextProvider, getTitle, 3);
    EXPECT_POSITION (SVS::IHostContextProvider, getContextText, 4);
    EXPECT_POSITION (SVS::IHostProductInformationProvider, getProductName, 3);
    EXPECT_POSITION (SVS::IHostProductInformationProvider, getProductVersion, 4);
    EXPECT_POSITION (SVS::IHostProductInformationProvider, getProductVendor, 5);
    EXPECT_POSITION (SVS::IMessageEndpoint, receiveMessage, 3);
    EXPECT_POSITION (SVS::ISequenceStorage, readSequence, 3);
    EXPECT_POSITION (SVS::ISequenceStorage, writeSequence, 4);
}

} // namespace
