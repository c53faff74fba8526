// The singing voice synthesiser's side of the connection, as the host's
// plug-in instance offers it.
#pragma once

#include "host/host_types.h"

namespace Steinberg {

class ISvsPlugin : public FUnknown
{
public:
    /** 3: hands the plug-in its host object, or null when it is detached. */
    virtual tresult PLUGIN_API setHost (FUnknown* host) = 0;
    virtual tresult PLUGIN_API attach () = 0;    // 4
    /** 5: 0 asks the agent to attach() before it lists the plug-in. */
    virtual int32 PLUGIN_API isAttached () = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (ISvsPlugin, 0x672AD737, 0x6C794582, 0x99F17045, 0xCAD4ABA4)

class ISvsTitleSink : public FUnknown
{
public:
    virtual tresult PLUGIN_API titleChanged () = 0;  // 3
    static const FUID iid;
};
DECLARE_CLASS_IID (ISvsTitleSink, 0xFFA159AA, 0x5BE94FEB, 0x98DFFEA8, 0xF625FB55)

class ISvsSequenceSink : public FUnknown
{
public:
    /** 3: the stored sequence was replaced; the plug-in reads it back when it likes. */
    virtual tresult PLUGIN_API sequenceChanged () = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (ISvsSequenceSink, 0x91A2711B, 0x0F26461E, 0xB882D4BB, 0x94BC1F1E)

} // namespace Steinberg
