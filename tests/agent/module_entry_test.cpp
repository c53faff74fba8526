// The module's entry bookkeeping, with the loader's calls replaced by a recorder.
#include "agent/module_entry.h"
#include "agent/module_platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Recorder
{
    std::vector<std::string> calls;
};
Recorder recorder;

void recordRetain (void* handle) { recorder.calls.push_back ("retain " + std::to_string (reinterpret_cast<uintptr_t> (handle))); }
void recordRelease (void* handle) { recorder.calls.push_back ("release " + std::to_string (reinterpret_cast<uintptr_t> (handle))); }
bool recordPath (void* handle, char* buffer, std::size_t size)
{
    recorder.calls.push_back ("path " + std::to_string (reinterpret_cast<uintptr_t> (handle)));
    snprintf (buffer, size, "/bundles/%zu.vst3", static_cast<std::size_t> (reinterpret_cast<uintptr_t> (handle)));
    return true;
}
const Kt::ModulePlatform recordingPlatform {recordRetain, recordRelease, recordPath};

class ModuleEntry : public ::testing::Test
{
protected:
    void SetUp () override
    {
        recorder.calls.clear ();
        Kt::setModulePlatform (&recordingPlatform);
        // The state is process-wide: every case starts from a balanced count.
        auto& state = Kt::moduleState ();
        while (state.moduleRefCount > 0)
            bundleExit ();
        while (state.moduleRefCount < 0)
            bundleEntry (reinterpret_cast<void*> (0x99));
        recorder.calls.clear ();
    }
    void TearDown () override { Kt::setModulePlatform (nullptr); }

    static void* handle (uintptr_t value) { return reinterpret_cast<void*> (value); }
};

TEST_F (ModuleEntry, NullBundleIsAcceptedWithoutEffect)
{
    EXPECT_TRUE (bundleEntry (nullptr));
    EXPECT_EQ (Kt::moduleState ().moduleRefCount, 0);
    EXPECT_TRUE (recorder.calls.empty ());
}

TEST_F (ModuleEntry, RepeatedEntriesRetainEachTimeAndTheLastExitReleasesAll)
{
    const bool firstEver = Kt::moduleState ().moduleHandle == nullptr;
    EXPECT_TRUE (bundleEntry (handle (7)));
    EXPECT_TRUE (bundleEntry (handle (7)));
    EXPECT_EQ (Kt::moduleState ().moduleRefCount, 2);
    if (firstEver)
    {
        // Only the first handle ever seen fixes the module handle and its path.
        EXPECT_EQ (Kt::moduleState ().moduleHandle, handle (7));
        EXPECT_STREQ (Kt::moduleState ().modulePath, "/bundles/7.vst3");
    }

    EXPECT_TRUE (bundleExit ());
    std::vector<std::string> expected {"retain 7"};
    if (firstEver)
        expected.push_back ("path 7");
    expected.push_back ("retain 7");
    EXPECT_EQ (recorder.calls, expected);

    EXPECT_TRUE (bundleExit ());
    expected.push_back ("release 7");
    expected.push_back ("release 7");
    EXPECT_EQ (recorder.calls, expected);
    EXPECT_TRUE (Kt::moduleState ().moduleBundleRefs.empty ());
}

TEST_F (ModuleEntry, AModuleHandleOnceSetIsNeverReplaced)
{
    bundleEntry (handle (11));
    bundleExit ();
    void* first = Kt::moduleState ().moduleHandle;
    const std::string path = Kt::moduleState ().modulePath;
    bundleEntry (handle (12));
    EXPECT_EQ (Kt::moduleState ().moduleHandle, first);
    EXPECT_EQ (path, Kt::moduleState ().modulePath);
    bundleExit ();
}

TEST_F (ModuleEntry, SurplusExitAnswersFalseAndTheCountStaysNegative)
{
    EXPECT_FALSE (bundleExit ());
    EXPECT_EQ (Kt::moduleState ().moduleRefCount, -1);
    EXPECT_TRUE (bundleEntry (handle (5)));
    EXPECT_EQ (Kt::moduleState ().moduleRefCount, 0);
    EXPECT_FALSE (bundleExit ());  // the old value was 0
    EXPECT_EQ (Kt::moduleState ().moduleRefCount, -1);
    // The handle of that entry stays retained: no exit balanced it.
    EXPECT_EQ (std::count (recorder.calls.begin (), recorder.calls.end (), "release 5"), 0);
}

TEST (LoaderPlatform, CountsRetainsPerHandle)
{
    const auto& platform = Kt::modulePlatform ();
    void* a = reinterpret_cast<void*> (0x1001);
    void* b = reinterpret_cast<void*> (0x1002);
    platform.retain (a);
    platform.retain (a);
    platform.retain (b);
    EXPECT_EQ (Kt::retainCountOf (a), 2);
    EXPECT_EQ (Kt::retainCountOf (b), 1);
    platform.release (a);
    platform.release (b);
    EXPECT_EQ (Kt::retainCountOf (a), 1);
    EXPECT_EQ (Kt::retainCountOf (b), 0);
    platform.release (a);
    EXPECT_EQ (Kt::retainCountOf (a), 0);
}

} // namespace
