// The editor window on Windows: the host's own message loop drives the toolkit, and the
// window is looked at from outside through the Win32 API.
#include "tests/agent/window/editor_window.h"

#include <windows.h>

namespace EditorWindowTest {

bool windowSystemPresent () { return true; }

void runHostMessages ()
{
    MSG message;
    while (PeekMessageW (&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage (&message);
        DispatchMessageW (&message);
    }
}

std::vector<WindowId> agentWindows ()
{
    std::vector<WindowId> found;
    for (HWND window = nullptr; (window = FindWindowExW (nullptr, window, nullptr, L"Cantorela Beta Agent"));)
    {
        DWORD process = 0;
        GetWindowThreadProcessId (window, &process);
        if (process == GetCurrentProcessId ())
            found.push_back (reinterpret_cast<WindowId> (window));
    }
    return found;
}

Placement placementOf (WindowId id)
{
    const HWND window = reinterpret_cast<HWND> (id);
    RECT client {};
    POINT origin {};
    if (!GetClientRect (window, &client) || !ClientToScreen (window, &origin))
        return {};
    return {origin.x, origin.y, client.right, client.bottom, IsWindowVisible (window) != FALSE};
}

void pressCloseButton (WindowId window) { PostMessageW (reinterpret_cast<HWND> (window), WM_CLOSE, 0, 0); }

Shot grab (WindowId id)
{
    Shot shot;
    const HWND window = reinterpret_cast<HWND> (id);
    const Placement placement = placementOf (id);
    if (!placement.visible)
        return shot;
    shot.width = placement.width;
    shot.height = placement.height;
    HDC source = GetDC (window);
    HDC memory = CreateCompatibleDC (source);
    BITMAPINFO info {};
    info.bmiHeader = {sizeof (BITMAPINFOHEADER), shot.width, -shot.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection (memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject (memory, bitmap);
    BitBlt (memory, 0, 0, shot.width, shot.height, source, 0, 0, SRCCOPY);
    // A top-down 32-bit DIB: each pixel a DWORD 0x00RRGGBB.
    const auto* pixels = static_cast<const DWORD*> (bits);
    shot.rgb.assign (pixels, pixels + static_cast<size_t> (shot.width) * shot.height);
    for (auto& pixel : shot.rgb)
        pixel &= 0xFFFFFF;
    SelectObject (memory, old);
    DeleteObject (bitmap);
    DeleteDC (memory);
    ReleaseDC (window, source);
    return shot;
}

void keepShot (const Shot&, const char*) {}

long openHandles ()
{
    DWORD handles = 0;
    GetProcessHandleCount (GetCurrentProcess (), &handles);
    return static_cast<long> (handles);
}

} // namespace EditorWindowTest
