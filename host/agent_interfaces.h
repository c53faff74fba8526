// The host's interfaces that the agent implements: action, idle, project
// notifications, storage notification and the edit hook.
#pragma once

#include "host/host_types.h"

namespace Steinberg {

class IHostProject;
class IProjectEditContext;

class IActionHandler : public FUnknown
{
public:
    /** 3: kResultOk when the action is ours; `checkOnly` asks without acting. */
    virtual tresult PLUGIN_API handleAction (const char* category, const char* name, TBool checkOnly) = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (IActionHandler, 0x9FC17BEB, 0x3A514077, 0xA25A7726, 0xD3D3D711)

class IIdleHandler : public FUnknown
{
public:
    virtual void PLUGIN_API onIdle () = 0;  // 3
    static const FUID iid;
};
DECLARE_CLASS_IID (IIdleHandler, 0xD70BBB58, 0xC80545B8, 0xAB826418, 0x0B673A84)

/** The project notification chain: three identifiers, one table of positions 3 to 9. */
class IProjectNotification : public FUnknown
{
public:
    virtual void PLUGIN_API onProjectActivated (IHostProject* project) = 0;  // 3
    virtual void PLUGIN_API onProjectDeactivated () = 0;                     // 4
    virtual void PLUGIN_API onProjectAdded (IHostProject* project) = 0;      // 5
    virtual void PLUGIN_API onProjectRemoved (IHostProject* project) = 0;    // 6
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectNotification, 0x98F69AC5, 0x578D4A22, 0xB8E02781, 0xC06CFF25)

class IProjectNotification2 : public IProjectNotification
{
public:
    virtual int32 PLUGIN_API onProjectQuery () = 0;  // 7
    virtual void PLUGIN_API onProjectNoOp () = 0;    // 8
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectNotification2, 0x7A43C28E, 0xBAC248D1, 0xB72D1AA2, 0x20FEBF10)

class IProjectNotification3 : public IProjectNotification2
{
public:
    virtual void PLUGIN_API onProjectRefresh (IHostProject* project) = 0;  // 9
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectNotification3, 0x04A1D438, 0x482A4D8C, 0x8CA76ED5, 0x0640A914)

class IProjectStorageNotification : public FUnknown
{
public:
    virtual void PLUGIN_API onProjectStorage () = 0;  // 3
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectStorageNotification, 0xD361D332, 0x604A4DF7, 0x83B17B91, 0xA35184DB)

class IProjectEditHook : public FUnknown
{
public:
    /** 3: the host runs an edit of `project`; `context` (may be null) takes part in its undo. */
    virtual tresult PLUGIN_API onProjectEdit (IHostProject* project, IProjectEditContext* context) = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectEditHook, 0xEDC5AF8F, 0xAABD46E8, 0xB86839CF, 0xE14CAB1F)

} // namespace Steinberg
