// The editor window of the Windows module as a host meets it: the DLL loaded through
// its exports, "Show Editor" sent through the action handler, the host's own message
// loop as the only thing that drives the toolkit, and the window looked at from
// outside through the Win32 API.
#include "host/agent_interfaces.h"
#include "workbench/loader/module_loader.h"
#include "workbench/sim/host_services.h"
#include "workbench/sim/tracker.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <vector>

using namespace Steinberg;

namespace {

/** The host's loop for `ms` milliseconds: every message dispatched, as a Windows host does. */
void runHostLoop (DWORD ms)
{
    const ULONGLONG until = GetTickCount64 () + ms;
    do
    {
        MSG message;
        while (PeekMessageW (&message, nullptr, 0, 0, PM_REMOVE))
        {
            TranslateMessage (&message);
            DispatchMessageW (&message);
        }
        Sleep (10);
    } while (GetTickCount64 () < until);
}

HWND editor () { return FindWindowW (nullptr, L"Cantorela Beta Agent"); }

/** The client area as drawn: how many pixels of the middle band are the clock's white. */
int whitePixelsInTheMiddle (HWND window)
{
    RECT client {};
    GetClientRect (window, &client);
    const int width = client.right, height = 80;
    HDC source = GetDC (window);
    HDC memory = CreateCompatibleDC (source);
    BITMAPINFO info {};
    info.bmiHeader = {sizeof (BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection (memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject (memory, bitmap);
    BitBlt (memory, 0, 0, width, height, source, 0, client.bottom / 2 - height / 2, SRCCOPY);
    int white = 0;
    const auto* pixels = static_cast<const DWORD*> (bits);
    for (int i = 0; i < width * height; ++i)
        white += (pixels[i] & 0xFFFFFF) == 0xFFFFFF;
    SelectObject (memory, old);
    DeleteObject (bitmap);
    DeleteDC (memory);
    ReleaseDC (window, source);
    return white;
}

TEST (EditorWindowOnWindows, ShowCloseShowAgainAndTerminate)
{
    Sim::LoadedModule module (CANTORELA_MODULE_PATH);
    ASSERT_TRUE (module.ok ()) << module.error ();
    ASSERT_TRUE (module.bundleEntry ());
    IPluginFactory* factory = module.getPluginFactory ();
    ASSERT_NE (factory, nullptr);
    Sim::Tracker::reset ();
    {
        Sim::HostServices host;
        IPluginBase* agent = module.createService (factory);
        ASSERT_NE (agent, nullptr);
        ASSERT_EQ (agent->initialize (host.context ()), kResultOk);
        ASSERT_EQ (host.actionRegistry ().handlers ().size (), 1u);
        IActionHandler* actions = host.actionRegistry ().handlers ()[0];

        EXPECT_EQ (actions->handleAction ("Cantorela Beta Agent", "Show Editor", true), kResultOk);
        runHostLoop (100);
        EXPECT_EQ (editor (), nullptr) << "checkOnly builds no window";

        EXPECT_EQ (actions->handleAction ("Cantorela Beta Agent", "Show Editor", false), kResultOk);
        runHostLoop (1000);
        const HWND window = editor ();
        ASSERT_NE (window, nullptr);
        EXPECT_TRUE (IsWindowVisible (window));
        RECT client {};
        GetClientRect (window, &client);
        EXPECT_EQ (client.right - client.left, 800);
        EXPECT_EQ (client.bottom - client.top, 800);
        EXPECT_GT (whitePixelsInTheMiddle (window), 20) << "the clock is drawn in white across the middle";

        // The close button hides; the next "Show Editor" brings the same window back.
        PostMessageW (window, WM_CLOSE, 0, 0);
        runHostLoop (300);
        EXPECT_TRUE (IsWindow (window));
        EXPECT_FALSE (IsWindowVisible (window));
        EXPECT_EQ (actions->handleAction ("Cantorela Beta Agent", "Show Editor", false), kResultOk);
        runHostLoop (300);
        EXPECT_EQ (editor (), window);
        EXPECT_TRUE (IsWindowVisible (window));

        EXPECT_EQ (agent->terminate (), kResultOk);
        runHostLoop (100);
        EXPECT_FALSE (IsWindow (window));
        EXPECT_EQ (agent->release (), 0u);
    }
    factory->release ();
    EXPECT_TRUE (module.bundleExit ());
    module.unload ();
    EXPECT_EQ (Sim::Tracker::report (), "");
}

} // namespace
