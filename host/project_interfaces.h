// The host's project model as the agent sees it: a tree of nodes with attributes,
// tracks with device trees, MIDI parts and their note events. Known only by
// identifier and by the position of each operation; unknown positions keep their
// places as reserved slots.
#pragma once

#include "host/host_types.h"

namespace Steinberg {

class IProjectStorageNotification;
class IEditStep;
class ITimeContext;
class INodeIterator;
class IProjectEditContext;
class IProjectNode;

/** The project pointer of every notification. Never queried: it is handed to us. */
class IHostProject : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)  CANTORELA_RESERVED_SLOT (4)  CANTORELA_RESERVED_SLOT (5)
    CANTORELA_RESERVED_SLOT (6)  CANTORELA_RESERVED_SLOT (7)  CANTORELA_RESERVED_SLOT (8)
    CANTORELA_RESERVED_SLOT (9)  CANTORELA_RESERVED_SLOT (10) CANTORELA_RESERVED_SLOT (11)
    CANTORELA_RESERVED_SLOT (12) CANTORELA_RESERVED_SLOT (13) CANTORELA_RESERVED_SLOT (14)
    CANTORELA_RESERVED_SLOT (15)
    /** 16: owned, may be null; an ITimeContext for a track or the root, an anchor holder for a part. */
    virtual FUnknown* PLUGIN_API getContext (IProjectNode* node) = 0;
    CANTORELA_RESERVED_SLOT (17)
    virtual TBool PLUGIN_API isBusy () = 0;                                                          // 18
    virtual tresult PLUGIN_API addStorageNotification (IProjectStorageNotification* receiver) = 0;    // 19
    virtual tresult PLUGIN_API removeStorageNotification (IProjectStorageNotification* receiver) = 0; // 20
};

/** Every node of the project tree: root, folders, tracks, parts, events. */
class IProjectNode : public FUnknown
{
public:
    virtual int32 PLUGIN_API isType (const char* typeName) = 0;                               // 3
    CANTORELA_RESERVED_SLOT (4)  CANTORELA_RESERVED_SLOT (5)
    virtual tresult PLUGIN_API setAttribute (const char* key, const FVariant* value, int32 flags) = 0; // 6
    virtual tresult PLUGIN_API getAttribute (const char* key, FVariant* value) = 0;          // 7
    virtual tresult PLUGIN_API hasAttribute (const char* key) = 0;                           // 8
    virtual tresult PLUGIN_API removeAttribute (const char* key) = 0;                        // 9
    virtual const char16* PLUGIN_API getName () = 0;                                         // 10
    CANTORELA_RESERVED_SLOT (11) CANTORELA_RESERVED_SLOT (12) CANTORELA_RESERVED_SLOT (13)
    virtual TBool PLUGIN_API isMuted () = 0;                                                 // 14
    CANTORELA_RESERVED_SLOT (15) CANTORELA_RESERVED_SLOT (16) CANTORELA_RESERVED_SLOT (17)
    CANTORELA_RESERVED_SLOT (18) CANTORELA_RESERVED_SLOT (19)
    virtual double PLUGIN_API getStart (ITimeContext* context) = 0;                          // 20
    CANTORELA_RESERVED_SLOT (21) CANTORELA_RESERVED_SLOT (22) CANTORELA_RESERVED_SLOT (23)
    virtual double PLUGIN_API getEnd (ITimeContext* context) = 0;                            // 24
    CANTORELA_RESERVED_SLOT (25)
    virtual double PLUGIN_API getContentStart (ITimeContext* context) = 0;                   // 26
    CANTORELA_RESERVED_SLOT (27)
    /** 28: owned, may be null. */
    virtual INodeIterator* PLUGIN_API getChildren () = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (IProjectNode, 0x7A6F999F, 0xBDBC4BCC, 0xAC403DAB, 0xACE8A171)

/** Returned by position only. */
class INodeIterator : public FUnknown
{
public:
    /** 3: borrowed, may be null; yields the current child and advances. */
    virtual IProjectNode* PLUGIN_API next () = 0;
    virtual TBool PLUGIN_API isDone () = 0;  // 4
};

/** Never queried: what getContext gives for a track. */
class ITimeContext : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3) CANTORELA_RESERVED_SLOT (4) CANTORELA_RESERVED_SLOT (5)
    virtual double PLUGIN_API linearToMusical (double seconds) = 0;  // 6
    virtual double PLUGIN_API musicalToLinear (double musical) = 0;  // 7
};

/** Returned by position only. */
class IDeviceNode : public FUnknown
{
public:
    virtual const char* PLUGIN_API getName () = 0;  // 3
    CANTORELA_RESERVED_SLOT (4) CANTORELA_RESERVED_SLOT (5) CANTORELA_RESERVED_SLOT (6)
    CANTORELA_RESERVED_SLOT (7) CANTORELA_RESERVED_SLOT (8) CANTORELA_RESERVED_SLOT (9)
    virtual int32 PLUGIN_API getChildCount () = 0;             // 10
    /** 11: borrowed, may be null. */
    virtual IDeviceNode* PLUGIN_API getChild (int32 index) = 0;
};

class ITrackNode : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)
    /** 4: 0 musical time, 1 linear time; anything else is a kind of event we don't read. */
    virtual int32 PLUGIN_API getTimeDomain () = 0;
    CANTORELA_RESERVED_SLOT (5) CANTORELA_RESERVED_SLOT (6)
    /** 7: borrowed, may be null. */
    virtual IDeviceNode* PLUGIN_API getDeviceTree () = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (ITrackNode, 0x7849F17E, 0x121249B2, 0x82F62425, 0xBACC5E5A)

class IInsertSlot : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)
    virtual const char16* PLUGIN_API getDisplayName () = 0;  // 4
    static const FUID iid;
};
DECLARE_CLASS_IID (IInsertSlot, 0xAA9BD1AE, 0x0EF94229, 0xB79F96F0, 0xA9BB031D)

class IPluginHolder : public FUnknown
{
public:
    /** 3: borrowed, may be null. */
    virtual FUnknown* PLUGIN_API getPlugin () = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (IPluginHolder, 0x0742C1BD, 0xA6B44FFA, 0xAB838ED1, 0x20A7D895)

class IMidiPart : public FUnknown
{
public:
    virtual int32 PLUGIN_API getTranspose () = 0;  // 3
    static const FUID iid;
};
DECLARE_CLASS_IID (IMidiPart, 0x127806AF, 0x826D4B67, 0xBB4E6A07, 0x48E32BC3)

class INoteEvent : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3) CANTORELA_RESERVED_SLOT (4) CANTORELA_RESERVED_SLOT (5)
    virtual int32 PLUGIN_API getPitch () = 0;  // 6
    static const FUID iid;
};
DECLARE_CLASS_IID (INoteEvent, 0x280D584E, 0x88EF43EC, 0x908F7C22, 0xAE6994FB)

/** Only passed along: the agent calls nothing on it. */
class IEditAnchor : public FUnknown
{
public:
    static const FUID iid;
};
DECLARE_CLASS_IID (IEditAnchor, 0x506DDF3C, 0x719D4A51, 0x838C6843, 0x002C2BEC)

class INoteText : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)
    /** 4: borrowed, may be null; the object the anchor of this write is queried from. */
    virtual FUnknown* PLUGIN_API resolveAnchor (IEditAnchor* partAnchor) = 0;
    /** 5: writes "lyrics" or "phoneme" as part of the host's edit. */
    virtual tresult PLUGIN_API setValue (const char* key, const FVariant* value, IEditAnchor* anchor,
                                         IProjectEditContext* context) = 0;
    virtual tresult PLUGIN_API getValue (const char* key, FVariant* value) = 0;  // 6
    static const FUID iid;
};
DECLARE_CLASS_IID (INoteText, 0xEDB0D1BA, 0x2E3248D9, 0x822B3DC0, 0x696428C9)

/** The edit in progress, as handed to the edit hook. Never queried. */
class IProjectEditContext : public FUnknown
{
public:
    CANTORELA_RESERVED_SLOT (3)  CANTORELA_RESERVED_SLOT (4)  CANTORELA_RESERVED_SLOT (5)
    CANTORELA_RESERVED_SLOT (6)  CANTORELA_RESERVED_SLOT (7)  CANTORELA_RESERVED_SLOT (8)
    CANTORELA_RESERVED_SLOT (9)  CANTORELA_RESERVED_SLOT (10) CANTORELA_RESERVED_SLOT (11)
    CANTORELA_RESERVED_SLOT (12)
    /** 13: enters an undo step into the host's current edit. */
    virtual tresult PLUGIN_API addEditStep (IEditStep* step) = 0;
};

} // namespace Steinberg
