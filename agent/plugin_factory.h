// The plug-in factory: the host's way from the module to an instance. The SDK
// copy we build against lacks its factory class, so this is our own, with the
// same behaviour: a growable class table, instance creation by class id and
// interface, and the process-wide pointer that the last release clears.
#pragma once

#include "pluginterfaces/base/ipluginbase.h"

#include <atomic>
#include <vector>

namespace Steinberg {

class CPluginFactory : public IPluginFactory3
{
public:
    using CreateFunction = FUnknown* (*) (void* context);

    explicit CPluginFactory (const PFactoryInfo& info);
    virtual ~CPluginFactory ();

    CPluginFactory (const CPluginFactory&) = delete;
    CPluginFactory& operator= (const CPluginFactory&) = delete;

    /** Adds a class; its record is copied. False for a null record or function. */
    bool registerClass (const PClassInfo* info, CreateFunction createFunc, void* context = nullptr);
    bool registerClass (const PClassInfo2* info, CreateFunction createFunc, void* context = nullptr);
    bool registerClass (const PClassInfoW* info, CreateFunction createFunc, void* context = nullptr);
    bool isClassRegistered (const FUID& cid) const;
    void removeAllClasses ();

    // FUnknown
    tresult PLUGIN_API queryInterface (const TUID iid, void** obj) override;
    uint32 PLUGIN_API addRef () override;
    uint32 PLUGIN_API release () override;

    // IPluginFactory
    tresult PLUGIN_API getFactoryInfo (PFactoryInfo* info) override;
    int32 PLUGIN_API countClasses () override;
    tresult PLUGIN_API getClassInfo (int32 index, PClassInfo* info) override;
    tresult PLUGIN_API createInstance (FIDString cid, FIDString iid, void** obj) override;

    // IPluginFactory2
    tresult PLUGIN_API getClassInfo2 (int32 index, PClassInfo2* info) override;

    // IPluginFactory3
    tresult PLUGIN_API getClassInfoUnicode (int32 index, PClassInfoW* info) override;
    tresult PLUGIN_API setHostContext (FUnknown* context) override;

private:
    struct ClassEntry
    {
        PClassInfo2 info8 {};
        PClassInfoW info16 {};
        CreateFunction createFunc = nullptr;
        void* context = nullptr;
        bool isUnicode = false;
    };

    std::atomic<int32> refCount {1};
    PFactoryInfo factoryInfo;
    std::vector<ClassEntry> classes;
};

/** The module's one factory while anybody holds it; cleared when the last reference goes. */
extern IPluginFactory* gPluginFactory;

} // namespace Steinberg
