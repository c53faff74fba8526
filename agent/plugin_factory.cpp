#include "agent/plugin_factory.h"

#include <cstring>

namespace Steinberg {

IPluginFactory* gPluginFactory = nullptr;

namespace {

// Wide strings of a unicode record back into the narrow record, for hosts that ask the old way.
// What is not ASCII has no narrow form and becomes '?'.
template <size_t N>
void narrowInto (char8 (&target)[N], const char16 (&source)[N])
{
    size_t index = 0;
    for (; index + 1 < N && source[index] != 0; ++index)
        target[index] = source[index] < 0x80 ? static_cast<char8> (source[index]) : '?';
    target[index] = 0;
}

void toAsciiRecord (const PClassInfoW& wide, PClassInfo2& narrow)
{
    std::memcpy (narrow.cid, wide.cid, sizeof (TUID));
    narrow.cardinality = wide.cardinality;
    std::memcpy (narrow.category, wide.category, sizeof (narrow.category));
    narrowInto (narrow.name, wide.name);
    narrow.classFlags = wide.classFlags;
    std::memcpy (narrow.subCategories, wide.subCategories, sizeof (narrow.subCategories));
    narrowInto (narrow.vendor, wide.vendor);
    narrowInto (narrow.version, wide.version);
    narrowInto (narrow.sdkVersion, wide.sdkVersion);
}

} // namespace

CPluginFactory::CPluginFactory (const PFactoryInfo& info) : factoryInfo (info) {}

CPluginFactory::~CPluginFactory ()
{
    if (gPluginFactory == this)
        gPluginFactory = nullptr;
}

bool CPluginFactory::registerClass (const PClassInfo* info, CreateFunction createFunc, void* context)
{
    if (!info || !createFunc)
        return false;
    PClassInfo2 info2 {};
    std::memcpy (info2.cid, info->cid, sizeof (TUID));
    info2.cardinality = info->cardinality;
    std::memcpy (info2.category, info->category, sizeof (info2.category));
    std::memcpy (info2.name, info->name, sizeof (info2.name));
    return registerClass (&info2, createFunc, context);
}

bool CPluginFactory::registerClass (const PClassInfo2* info, CreateFunction createFunc, void* context)
{
    if (!info || !createFunc)
        return false;
    ClassEntry entry;
    entry.info8 = *info;
    entry.info16.fromAscii (*info);
    entry.createFunc = createFunc;
    entry.context = context;
    classes.push_back (entry);
    return true;
}

bool CPluginFactory::registerClass (const PClassInfoW* info, CreateFunction createFunc, void* context)
{
    if (!info || !createFunc)
        return false;
    ClassEntry entry;
    entry.info16 = *info;
    toAsciiRecord (*info, entry.info8);
    entry.createFunc = createFunc;
    entry.context = context;
    entry.isUnicode = true;
    classes.push_back (entry);
    return true;
}

bool CPluginFactory::isClassRegistered (const FUID& cid) const
{
    for (const auto& entry : classes)
        if (cid == FUID::fromTUID (entry.info8.cid))
            return true;
    return false;
}

void CPluginFactory::removeAllClasses () { classes.clear (); }

tresult PLUGIN_API CPluginFactory::queryInterface (const TUID iid, void** obj)
{
    if (!obj)
        return kInvalidArgument;
    if (FUnknownPrivate::iidEqual (iid, IPluginFactory::iid) || FUnknownPrivate::iidEqual (iid, FUnknown::iid))
        *obj = static_cast<IPluginFactory*> (this);
    else if (FUnknownPrivate::iidEqual (iid, IPluginFactory2::iid))
        *obj = static_cast<IPluginFactory2*> (this);
    else if (FUnknownPrivate::iidEqual (iid, IPluginFactory3::iid))
        *obj = static_cast<IPluginFactory3*> (this);
    else
    {
        *obj = nullptr;
        return kNoInterface;
    }
    addRef ();
    return kResultOk;
}

uint32 PLUGIN_API CPluginFactory::addRef () { return static_cast<uint32> (++refCount); }

uint32 PLUGIN_API CPluginFactory::release ()
{
    const int32 left = --refCount;
    if (left == 0)
    {
        delete this;
        return 0;
    }
    return static_cast<uint32> (left);
}

tresult PLUGIN_API CPluginFactory::getFactoryInfo (PFactoryInfo* info)
{
    if (!info)
        return kInvalidArgument;
    *info = factoryInfo;
    return kResultOk;
}

int32 PLUGIN_API CPluginFactory::countClasses () { return static_cast<int32> (classes.size ()); }

tresult PLUGIN_API CPluginFactory::getClassInfo (int32 index, PClassInfo* info)
{
    if (!info || index < 0 || index >= countClasses ())
        return kInvalidArgument;
    const auto& source = classes[static_cast<size_t> (index)].info8;
    std::memcpy (info->cid, source.cid, sizeof (TUID));
    info->cardinality = source.cardinality;
    std::memcpy (info->category, source.category, sizeof (info->category));
    std::memcpy (info->name, source.name, sizeof (info->name));
    return kResultOk;
}

tresult PLUGIN_API CPluginFactory::getClassInfo2 (int32 index, PClassInfo2* info)
{
    if (!info || index < 0 || index >= countClasses ())
        return kInvalidArgument;
    *info = classes[static_cast<size_t> (index)].info8;
    return kResultOk;
}

tresult PLUGIN_API CPluginFactory::getClassInfoUnicode (int32 index, PClassInfoW* info)
{
    if (!info || index < 0 || index >= countClasses ())
        return kInvalidArgument;
    *info = classes[static_cast<size_t> (index)].info16;
    return kResultOk;
}

tresult PLUGIN_API CPluginFactory::createInstance (FIDString cid, FIDString iid, void** obj)
{
    if (!obj)
        return kInvalidArgument;
    *obj = nullptr;
    if (!cid || !iid)
        return kInvalidArgument;
    for (const auto& entry : classes)
    {
        if (!FUnknownPrivate::iidEqual (entry.info8.cid, cid))
            continue;
        FUnknown* instance = entry.createFunc (entry.context);
        if (!instance)
            break;
        // The creation reference goes either way: a refused interface destroys the instance again.
        const tresult result = instance->queryInterface (iid, obj);
        instance->release ();
        if (result == kResultOk && *obj)
            return kResultOk;
        *obj = nullptr;
        break;
    }
    return kNoInterface;
}

tresult PLUGIN_API CPluginFactory::setHostContext (FUnknown*) { return kNotImplemented; }

} // namespace Steinberg
