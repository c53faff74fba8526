// The module's entry bookkeeping, with the loader's calls replaced by a recorder.
#include "agent/module_entry.h"
#include "agent/module_platform.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

std::vector<std::string> calls;

void* handle (uintptr_t value) { return reinterpret_cast<void*> (value); }
std::string named (const char* call, void* handle) { return call + std::to_string (reinterpret_cast<uintptr_t> (handle)); }

void recordRetain (void* handle) { calls.push_back (named ("retain ", handle)); }
void recordRelease (void* handle) { calls.push_back (named ("release ", handle)); }
bool recordPath (void* handle, char* buffer, std::size_t size)
{
    calls.push_back (named ("path ", handle));
    snprintf (buffer, size, "/bundles/%zu.vst3", static_cast<std::size_t> (reinterpret_cast<uintptr_t> (handle)));
    return true;
}
const Kt::ModulePlatform recordingPlatform {recordRetain, recordRelease, recordPath};

// The state is process-wide and never reset: one case walks it from the start.
TEST (ModuleEntry, CountsEntriesAndReleasesEveryHandleAtTheLastExit)
{
    Kt::setModulePlatform (&recordingPlatform);
    const auto& state = Kt::moduleState ();

    EXPECT_TRUE (bundleEntry (nullptr));  // accepted, without effect
    EXPECT_EQ (state.moduleRefCount, 0);
    EXPECT_TRUE (calls.empty ());

    // Each entry retains its handle; only the first handle ever seen fixes the module handle and path.
    EXPECT_TRUE (bundleEntry (handle (7)));
    EXPECT_TRUE (bundleEntry (handle (12)));
    EXPECT_EQ (state.moduleRefCount, 2);
    EXPECT_EQ (state.moduleHandle, handle (7));
    EXPECT_STREQ (state.modulePath, "/bundles/7.vst3");
    EXPECT_TRUE (bundleExit ());
    EXPECT_EQ (calls, (std::vector<std::string> {"retain 7", "path 7", "retain 12"}));
    // Nobody says which entry an exit belongs to: the last one releases every handle.
    EXPECT_TRUE (bundleExit ());
    EXPECT_EQ (calls, (std::vector<std::string> {"retain 7", "path 7", "retain 12", "release 7", "release 12"}));
    EXPECT_TRUE (state.moduleBundleRefs.empty ());

    // A surplus exit answers false and the count stays negative; an entry then leaves it at 0.
    calls.clear ();
    EXPECT_FALSE (bundleExit ());
    EXPECT_EQ (state.moduleRefCount, -1);
    EXPECT_TRUE (bundleEntry (handle (5)));
    EXPECT_EQ (state.moduleHandle, handle (7));
    EXPECT_FALSE (bundleExit ());  // the old value was 0
    EXPECT_EQ (state.moduleRefCount, -1);
    EXPECT_EQ (calls, std::vector<std::string> {"retain 5"}) << "no exit balanced that entry";
    Kt::setModulePlatform (nullptr);
}

} // namespace
