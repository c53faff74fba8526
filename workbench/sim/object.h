// The common base of every simulated COM object: its own reference count, the
// owner's share of it, and the hooks that feed the tracker and the call log.
#pragma once

#include "workbench/sim/call_log.h"

#include "pluginterfaces/base/funknown.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace Sim {

/** Who holds the first reference of a new object. */
enum class Ownership
{
    Owner,   ///< the test or the tree: the count rests at 1 and the owner deletes
    Caller,  ///< handed out with a reference (iterators): the caller's release ends it
};

class Object
{
public:
    Object (std::string kind, std::string name, Side side, Ownership ownership = Ownership::Owner);
    virtual ~Object ();
    Object (const Object&) = delete;
    Object& operator= (const Object&) = delete;

    const std::string& kind () const { return kind_; }
    const std::string& name () const { return name_; }
    void setName (std::string name) { name_ = std::move (name); }
    /** "Kind 'name'", for reports. */
    std::string label () const;

    int32_t refCount () const { return count_.load (); }
    /** What the count should be when nobody but the owner holds a reference. */
    int32_t expectedCount () const { return expected_.load (); }
    void adjustExpectedCount (int32_t delta) { expected_ += delta; }
    int32_t overReleases () const { return overReleases_.load (); }
    /** Puts this object's releases into the ordered call log, so that a test can see when a reference went. */
    void logReleases (bool on) { logReleases_ = on; }

    /** The simulation's own references: neither logged nor counted as calls. */
    Steinberg::uint32 retain ();
    Steinberg::uint32 drop ();

protected:
    /** A hand-out's last reference went; it is kept a while as a husk. */
    virtual void onRetired () {}
    /** Hands out the face asked for, with a reference; false when this object has none. */
    virtual bool query (const Steinberg::TUID iid, void** obj) = 0;

    template <class I>
    bool offer (const Steinberg::TUID iid, void** obj, I* face)
    {
        if (!Steinberg::FUnknownPrivate::iidEqual (iid, I::iid))
            return false;
        *obj = face;
        retain ();
        return true;
    }
    bool offerUnknown (const Steinberg::TUID iid, void** obj, Steinberg::FUnknown* face);

    // What the FUnknown entry points of every concrete class forward to.
    Steinberg::tresult comQuery (const Steinberg::TUID iid, void** obj);
    Steinberg::uint32 comAddRef ();
    Steinberg::uint32 comRelease ();

private:
    friend class Tracker;

    std::string kind_;
    std::string name_;
    Side side_;
    Ownership ownership_;
    std::atomic<int32_t> count_ {1};
    std::atomic<int32_t> expected_;
    std::atomic<int32_t> overReleases_ {0};
    bool retired_ = false;
    bool logReleases_ = false;
    uint64_t serial_ = 0;
};

} // namespace Sim

/** The three FUnknown entries of a concrete class; one overrider serves every interface base. */
#define SIM_FUNKNOWN                                                                              \
public:                                                                                           \
    ::Steinberg::tresult PLUGIN_API queryInterface (const ::Steinberg::TUID iid, void** obj) override \
    {                                                                                             \
        return comQuery (iid, obj);                                                               \
    }                                                                                             \
    ::Steinberg::uint32 PLUGIN_API addRef () override { return comAddRef (); }                    \
    ::Steinberg::uint32 PLUGIN_API release () override { return comRelease (); }
