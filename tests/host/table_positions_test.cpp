// Every operation we call on a closed interface, or that the host calls on us,
// must sit at its agreed position in the table. Under the Itanium C++ ABI a
// pointer to a virtual member function holds 1 + the byte offset of its entry
// in the table, which gives the position without building an object.
#include "host/agent_interfaces.h"
#include "host/edit_step_interfaces.h"
#include "host/plugin_interfaces.h"
#include "host/project_interfaces.h"
#include "host/service_interfaces.h"
#include "svs/svs_interfaces.h"

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

namespace {

using namespace Steinberg;

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
