// What a singing voice synthesiser sees of its host: the host object's five
// faces, the note list and the 152-byte note record that passes through it.
#pragma once

#include "pluginterfaces/base/funknown.h"

#include <cstddef>

namespace SVS {

using Steinberg::FUnknown;
using Steinberg::FUID;
using Steinberg::int32;
using Steinberg::int64;
using Steinberg::uint64;
using Steinberg::tresult;
using Steinberg::TUID;

/** One note or rest of a synthesiser's sequence. Little-endian, 152 bytes, shared binary layout. */
struct SVSNote
{
    uint64 reserved0;
    uint64 reserved1;
    double startTime;          ///< seconds on the project's timeline
    double endTime;            ///< seconds on the project's timeline
    float pitchCents;          ///< relative to MIDI note 69
    int32 reserved2;
    int32 fixedValueA;         ///< always 4
    int32 fixedValueB;         ///< always 4
    bool isRest;
    bool isContinuation;
    char padding[2];
    int32 phonemeCount;        ///< used entries of phonemes, 1 to 8
    char phonemes[8][8];       ///< zero-terminated ASCII names; unused entries all zero
    int32 phonemeParams[8];    ///< -1 for each used entry, 0 for the others
};

static_assert (sizeof (bool) == 1, "isRest and isContinuation are single bytes");
static_assert (sizeof (SVSNote) == 152, "SVSNote is a 152-byte record");
static_assert (offsetof (SVSNote, reserved0) == 0);
static_assert (offsetof (SVSNote, reserved1) == 8);
static_assert (offsetof (SVSNote, startTime) == 16);
static_assert (offsetof (SVSNote, endTime) == 24);
static_assert (offsetof (SVSNote, pitchCents) == 32);
static_assert (offsetof (SVSNote, reserved2) == 36);
static_assert (offsetof (SVSNote, fixedValueA) == 40);
static_assert (offsetof (SVSNote, fixedValueB) == 44);
static_assert (offsetof (SVSNote, isRest) == 48);
static_assert (offsetof (SVSNote, isContinuation) == 49);
static_assert (offsetof (SVSNote, padding) == 50);
static_assert (offsetof (SVSNote, phonemeCount) == 52);
static_assert (offsetof (SVSNote, phonemes) == 56);
static_assert (offsetof (SVSNote, phonemeParams) == 120);

/** The synthesiser's text receiver: the host object writes its strings here. */
class ISvsTextSink : public FUnknown
{
public:
    virtual tresult PLUGIN_API reservedSlot3 () { return Steinberg::kNotImplemented; }
    virtual tresult PLUGIN_API reservedSlot4 () { return Steinberg::kNotImplemented; }
    /** 5: UTF-8 bytes, `length` without terminator. */
    virtual tresult PLUGIN_API setText (const char* bytes, int64 length) = 0;
};

/** A free-form message of the synthesiser; its bytes have no format we know. */
class ISvsMessage : public FUnknown
{
public:
    virtual uint64 PLUGIN_API getSize () = 0;                        // 3
    virtual tresult PLUGIN_API read (void* buffer, uint64 size) = 0;  // 4
};

class INoteList : public FUnknown
{
public:
    virtual int32 PLUGIN_API getNoteCount () = 0;                       // 3
    virtual int32 PLUGIN_API size () = 0;                               // 4
    virtual tresult PLUGIN_API getNote (int32 index, SVSNote* out) = 0;      // 5
    virtual tresult PLUGIN_API getNoteCopy (int32 index, SVSNote* out) = 0;  // 6
    virtual tresult PLUGIN_API addNote (const SVSNote* note) = 0;            // 7
    static const FUID iid;
};
DECLARE_CLASS_IID (INoteList, 0xB14603BD, 0xE2734A12, 0x86A86E09, 0x7ADDBDAC)

class IHost : public FUnknown
{
public:
    virtual tresult PLUGIN_API getTitle (ISvsTextSink* sink) = 0;  // 3
    static const FUID iid;
};
DECLARE_CLASS_IID (IHost, 0x55D1F915, 0x06534B40, 0x995BE902, 0x566FD1B9)

class IHostContextProvider : public FUnknown
{
public:
    virtual tresult PLUGIN_API getTitle (ISvsTextSink* sink) = 0;        // 3
    virtual tresult PLUGIN_API getContextText (ISvsTextSink* sink) = 0;  // 4
    static const FUID iid;
};
DECLARE_CLASS_IID (IHostContextProvider, 0x9A4A7F18, 0x99C3467E, 0xAF22429D, 0xA736365E)

class IHostProductInformationProvider : public FUnknown
{
public:
    virtual tresult PLUGIN_API getProductName (ISvsTextSink* sink) = 0;     // 3
    virtual tresult PLUGIN_API getProductVersion (ISvsTextSink* sink) = 0;  // 4
    virtual tresult PLUGIN_API getProductVendor (ISvsTextSink* sink) = 0;   // 5
    static const FUID iid;
};
DECLARE_CLASS_IID (IHostProductInformationProvider, 0xD942C227, 0x24804C2F, 0xA6224F90, 0xBBF7FB1F)

class IMessageEndpoint : public FUnknown
{
public:
    virtual tresult PLUGIN_API receiveMessage (ISvsMessage* message) = 0;  // 3
    static const FUID iid;
};
DECLARE_CLASS_IID (IMessageEndpoint, 0x5F8BAE4E, 0x79054D7E, 0x91979B65, 0xDCF35945)

class ISequenceStorage : public FUnknown
{
public:
    /** 3: appends the stored sequence to `target`. */
    virtual tresult PLUGIN_API readSequence (INoteList* target) = 0;
    /** 4: replaces the stored sequence with `source` and tells the plug-in. */
    virtual tresult PLUGIN_API writeSequence (INoteList* source) = 0;
    static const FUID iid;
};
DECLARE_CLASS_IID (ISequenceStorage, 0x5E34C75D, 0x20C7431E, 0x8C21F832, 0x8A59AA40)

} // namespace SVS
