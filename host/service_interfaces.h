// The host services that the agent looks up in initialize() and releases in terminate().
// Positions count from 0; 0 to 2 are FUnknown's.
#pragma once

#include "host/host_types.h"

namespace Steinberg {

class IActionHandler;
class IIdleHandler;
class IProjectNotification;
class IHostProject;

/** Entry to every other service; asked of the context handed to initialize(). */
class IHostServices : public FUnknown
{
public:
    /** 3: fills `out` with a new reference and returns kResultOk, or fails. */
    virtual tresult PLUGIN_API getService (const char* iid, void** out) = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (IHostServices, 0xEEC89683, 0x80DB4336, 0x9177273E, 0x138A763B)

/** The host product's three strings, zero-terminated UTF-16, borrowed, never null. */
class IHostProductInfo : public FUnknown
{
public:
    virtual const char16* PLUGIN_API getProductString1 () = 0;  // 3
    virtual const char16* PLUGIN_API getProductString2 () = 0;  // 4
    virtual const char16* PLUGIN_API getProductString3 () = 0;  // 5
    static const FUID iid;
};
DECLARE_CLASS_IID (IHostProductInfo, 0xA8E1A52A, 0x8E24416A, 0xB9592174, 0x2443FB74)

class IActionHandlerRegistry : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)
    CANTORELA_RESERVED_SLOT (4)
    virtual tresult PLUGIN_API addHandler (IActionHandler* handler) = 0;     // 5
    virtual tresult PLUGIN_API removeHandler (IActionHandler* handler) = 0;  // 6
    static const FUID iid;
};
DECLARE_CLASS_IID (IActionHandlerRegistry, 0x762F3F61, 0x11D14115, 0x92F97AC6, 0xF239460F)

class IModuleUnloadSink : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)
    /** 4: the agent hands over the module handle it was loaded with. */
    virtual tresult PLUGIN_API moduleTerminating (void* moduleHandle) = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (IModuleUnloadSink, 0xA42A9119, 0x161E4547, 0x98A26FB7, 0x69140E24)

class IIdleHandlerRegistry : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)
    virtual tresult PLUGIN_API addHandler (IIdleHandler* handler) = 0;     // 4
    virtual tresult PLUGIN_API removeHandler (IIdleHandler* handler) = 0;  // 5
    static const FUID iid;
};
DECLARE_CLASS_IID (IIdleHandlerRegistry, 0x9E871847, 0xF1AB4776, 0xA06C6F94, 0x5D7FDD4D)

class IProjectManager : public FUnknown
{
public:
    virtual int32 PLUGIN_API getProjectCount () = 0;                                  // 3
    /** 4, 5: borrowed, may be null. */
    virtual IHostProject* PLUGIN_API getProject (int32 index) = 0;                    // 4
    virtual IHostProject* PLUGIN_API getActiveProject () = 0;                         // 5
    virtual tresult PLUGIN_API addNotification (IProjectNotification* receiver) = 0;    // 6
    virtual tresult PLUGIN_API removeNotification (IProjectNotification* receiver) = 0; // 7
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectManager, 0x3D7C2813, 0x8ABF4AAE, 0xA23A11BF, 0x37214C36)

} // namespace Steinberg
