// 200 whole lives of the built module in one process, as a host that loads and
// unloads it again and again: load, entry, factory, agent, a project's life,
// terminate, release, exit, unload. Each life must go as a host expects it to, and
// open descriptors and resident memory must not grow; under AddressSanitizer its
// leak check covers the heap at exit.
#include "host/agent_interfaces.h"
#include "workbench/loader/module_loader.h"
#include "workbench/sim/call_log.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/svs_plugin.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

using namespace Steinberg;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define CANTORELA_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CANTORELA_SANITIZED 1
#endif
#endif

namespace {

long openDescriptors ()
{
    const std::filesystem::directory_iterator descriptors ("/proc/self/fd");
    return std::distance (begin (descriptors), end (descriptors));
}

/** Whether the module's file is still mapped into the process. */
bool moduleMapped ()
{
    std::ifstream maps ("/proc/self/maps");
    std::string line;
    while (std::getline (maps, line))
        if (line.find ("CantorelaBetaAgent.so") != std::string::npos)
            return true;
    return false;
}

long residentKiB ()
{
    std::ifstream statm ("/proc/self/statm");
    long pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * (sysconf (_SC_PAGESIZE) / 1024);
}

/** One life of the module, checked as a host sees it; the host closes its project before the agent's
    terminate, or quits with the project open. */
void oneLife (bool closeFirst)
{
    Sim::LoadedModule module (CANTORELA_MODULE_PATH);
    ASSERT_TRUE (module.ok ()) << module.error ();
    ASSERT_TRUE (module.bundleEntry ());
    IPluginFactory* factory = module.getPluginFactory ();
    ASSERT_NE (factory, nullptr);
    {
        Sim::SvsPlugin synth ("synth");
        Sim::HostServices host;
        auto& manager = host.projectManager ();
        Sim::Project& song = manager.createProject ("Song");
        auto& track = song.root ().addInstrumentTrack ("Vocals");
        track.setAttr ("TrID", Sim::Value (int64_t {7}));  // an earlier run's id, dropped when the project comes
        track.addSlot ("Slot 1", synth.unknown ());
        auto& part = track.addPart (0.0, 6.0);
        Sim::Note& first = part.addNote (1.0, 2.0, 60, "hello");
        Sim::Note& second = part.addNote (2.0, 3.0, 62);
        part.addNote (3.0, 4.0, 64);

        IPluginBase* agent = module.createService (factory);
        ASSERT_NE (agent, nullptr);
        ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
        manager.addProject (song);
        manager.activate (song);
        EXPECT_EQ (track.attrInt ("TrID"), 1);
        EXPECT_EQ (song.typeLyric (second, "sky", agent), kResultOk);
        // A word from no dictionary: the letter-to-sound rules and their regex library run in every life.
        EXPECT_EQ (song.typeLyric (first, "morning glorptastic", agent), kResultOk);
        EXPECT_TRUE (song.undo ());
        EXPECT_TRUE (song.redo ());
        // Milliseconds into the agent's first idle interval: the idle call finds no pass due.
        const int64_t hostCalls = Sim::CallLog::hostCalls ();
        host.idleRegistry ().idle ();
        EXPECT_EQ (Sim::CallLog::hostCalls (), hostCalls) << "an idle pass before its interval was up";
        manager.refresh (song);
        EXPECT_FALSE (synth.notes ().empty ());
        if (closeFirst)
        {
            manager.deactivate ();
            manager.removeProject (song);
        }

        EXPECT_EQ (agent->terminate (), kResultOk);
        EXPECT_TRUE (host.idleRegistry ().handlers ().empty ());
        EXPECT_TRUE (host.actionRegistry ().handlers ().empty ());
        EXPECT_TRUE (manager.receivers ().empty ());
        EXPECT_TRUE (song.storageReceivers ().empty ());
        manager.clearHistories ();
        EXPECT_EQ (agent->release (), 0u);
        EXPECT_EQ (synth.host (), nullptr);  // detached when the agent went
    }
    factory->release ();
    EXPECT_TRUE (module.bundleExit ());
    module.unload ();
}

TEST (ModuleCycles, TwoHundredLivesLeaveNothingBehind)
{
    constexpr int kWarmUp = 20, kCycles = 200;
    Sim::Tracker::reset ();
    long fdsAfterWarmUp = 0;
    long rssAfterWarmUp = 0;
    for (int cycle = 0; cycle < kCycles; ++cycle)
    {
        SCOPED_TRACE (cycle);
        oneLife (cycle % 2 == 0);
        if (HasFatalFailure () || HasFailure ())
            return;
        ASSERT_EQ (Sim::Tracker::report (), "") << "the agent left host objects referenced";
        // The simulated host's own records would grow with every life; only the module's memory is measured.
        Sim::Tracker::reset ();
        Sim::CallLog::clear ();
        if (cycle + 1 == kWarmUp)
        {
            fdsAfterWarmUp = openDescriptors ();
            rssAfterWarmUp = residentKiB ();
        }
    }
    const long fds = openDescriptors ();
    const long rss = residentKiB ();
    std::printf ("after %d warm-up lives: %ld descriptors, %ld KiB resident; after %d: %ld, %ld KiB\n", kWarmUp,
                 fdsAfterWarmUp, rssAfterWarmUp, kCycles, fds, rss);
    EXPECT_EQ (fds, fdsAfterWarmUp);
    // Each life really ends in an unload, so each load really starts afresh.
    EXPECT_FALSE (moduleMapped ()) << "dlclose left the module in the process";
#ifndef CANTORELA_SANITIZED
    // Allocator noise stays well below this; a module or dictionary kept per life would not.
    EXPECT_LT (rss - rssAfterWarmUp, 8 * 1024) << "resident memory grew over the cycles";
#endif
}

} // namespace
