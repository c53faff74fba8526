// Two host threads on one agent for a few seconds: one sends edits, undo, redo
// and notifications, the other idle calls. Built with ThreadSanitizer this is
// the race check; in every build it checks that nothing deadlocks and that each
// idle pass either ran or gave way to the pass that held the mutex.
#include "agent/agent.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/project.h"
#include "workbench/sim/svs_plugin.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <mutex>
#include <thread>

using namespace Steinberg;

namespace {

int stressSeconds ()
{
    const char* text = std::getenv ("CANTORELA_STRESS_SECONDS");
    const int seconds = text ? std::atoi (text) : 0;
    return seconds > 0 ? seconds : 3;
}

TEST (Concurrency, EditsUndoAndNotificationsBesideIdleCalls)
{
    Sim::SvsPlugin lead ("lead"), harmony ("harmony");  // outlive the agent, which detaches them
    Sim::HostServices host;
    auto& manager = host.projectManager ();
    Sim::Project& song = manager.createProject ("Song");
    std::vector<Sim::Note*> notes;
    for (auto* synth : {&lead, &harmony})
    {
        auto& track = song.root ().addInstrumentTrack (synth == &lead ? "Lead" : "Harmony");
        track.addSlot ("Slot 1", synth->unknown ());
        auto& part = track.addPart (0.0, 12.0);
        for (int i = 0; i < 8; ++i)
            notes.push_back (&part.addNote (1.0 + i, 2.0 + i, 60 + i));
    }

    auto* agent = new Kt::CantorelaBetaAgent;
    ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
    // Every idle call is due, so the two threads meet at the mutex as often as they can.
    agent->interval ().currentIntervalMs = 0;
    agent->interval ().adaptive = false;
    manager.addProject (song);
    manager.activate (song);
    IProjectEditHook* hook = agent;
    IProjectNotification3* notifications = agent;

    // The host's own lock over its model: its direct changes to notes, its undo and
    // redo, and its idle calls never overlap. The agent's notification and edit
    // passes run outside it, so they meet the idle calls only at the agent's mutex.
    std::mutex hostModel;
    std::atomic<bool> stop {false};
    std::atomic<int> edits {0}, undos {0}, redos {0}, escaped {0};
    std::atomic<int> ran {0}, mutexTaken {0}, nothingToDo {0};
    const char* words[] = {"hello", "sky", "ka", "tomorrow", "la", "morning[m ao r]", "ah"};

    // A hang is a deadlock here; the ThreadSanitizer stage runs this program with no runner's timeout.
    std::promise<void> finished;
    std::thread watchdog ([&finished] {
        if (finished.get_future ().wait_for (std::chrono::seconds (stressSeconds () + 60)) != std::future_status::ready)
        {
            std::fprintf (stderr, "watchdog: no progress, deadlock\n");
            std::abort ();
        }
    });
    std::thread editor ([&] {
        for (int i = 0; !stop; ++i)
        {
            try
            {
                // Of every eight turns: four edits, two undos, a redo and a refresh.
                if (i % 8 < 4)
                {
                    Sim::EditContext* context;
                    {
                        std::lock_guard<std::mutex> lock (hostModel);
                        context = &song.beginEdit ();
                        notes[(i * 7) % notes.size ()]->setText ("lyrics", words[i % 7]);
                    }
                    hook->onProjectEdit (song.hostProject (), context);
                    std::lock_guard<std::mutex> lock (hostModel);
                    song.endEdit ();
                    ++edits;
                }
                else if (i % 8 == 7)
                    notifications->onProjectRefresh (song.hostProject ());
                else
                {
                    std::lock_guard<std::mutex> lock (hostModel);
                    const bool redo = i % 8 == 6;
                    if (redo ? song.redo () : song.undo ())
                        ++(redo ? redos : undos);
                }
            }
            catch (...)
            {
                ++escaped;
            }
        }
    });
    std::thread idler ([&] {
        for (int i = 0; !stop; ++i)
        {
            // Far more often than a host's 10 to 20 ms, yet leaving the editor room to run.
            std::this_thread::sleep_for (std::chrono::microseconds (100));
            std::lock_guard<std::mutex> lock (hostModel);
            try
            {
                if (i % 16 == 0)
                {
                    agent->onIdle ();  // the host's own entry, pacing and toolkit dispatch included
                    continue;
                }
                switch (agent->runIdlePass ())
                {
                case Kt::CantorelaBetaAgent::IdleOutcome::ran: ++ran; break;
                case Kt::CantorelaBetaAgent::IdleOutcome::mutexTaken: ++mutexTaken; break;
                case Kt::CantorelaBetaAgent::IdleOutcome::nothingToDo: ++nothingToDo; break;
                }
            }
            catch (...)
            {
                ++escaped;
            }
        }
    });
    std::this_thread::sleep_for (std::chrono::seconds (stressSeconds ()));
    stop = true;
    editor.join ();
    idler.join ();
    finished.set_value ();
    watchdog.join ();

    EXPECT_EQ (escaped, 0);
    EXPECT_GT (edits, 0);
    EXPECT_GT (undos, 0);
    EXPECT_GT (redos, 0);
    EXPECT_GT (ran, 0);
    EXPECT_GT (mutexTaken, 0) << "the threads never met at the mutex";
    EXPECT_EQ (nothingToDo, 0) << "the project stayed active and idle throughout";

    // Afterwards one pass settles everything: the mutex is free and every note is written back.
    ASSERT_TRUE (agent->passMutex ().try_lock ());
    agent->passMutex ().unlock ();
    EXPECT_EQ (agent->runIdlePass (), Kt::CantorelaBetaAgent::IdleOutcome::ran);

    manager.deactivate ();
    manager.removeProject (song);
    agent->terminate ();
    manager.clearHistories ();
    EXPECT_EQ (agent->release (), 0u);
}

} // namespace
