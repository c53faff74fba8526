#include "workbench/cli/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace Workbench {

namespace {

const auto quietStart = std::chrono::milliseconds (1000);  // a short run shows nothing
const auto redrawEvery = std::chrono::milliseconds (100);

} // namespace

std::string progressLine (const std::string& step, double fraction, int width)
{
    const double f = std::clamp (std::isfinite (fraction) ? fraction : 0.0, 0.0, 1.0);
    const int filled = static_cast<int> (std::floor (f * width));
    char percent[8];
    std::snprintf (percent, sizeof percent, "%3d%%", static_cast<int> (std::floor (f * 100.0)));
    return "[" + std::string (static_cast<std::size_t> (filled), '#')
           + std::string (static_cast<std::size_t> (width - filled), '.') + "] " + percent + "  " + step;
}

Progress::Progress (bool terminal_) : terminal (terminal_) {}

bool Progress::standardErrorIsTerminal ()
{
#ifdef _WIN32
    return _isatty (_fileno (stderr)) != 0;
#else
    return isatty (STDERR_FILENO) != 0;
#endif
}

void Progress::step (const std::string& name, double fraction)
{
    const auto now = Clock::now ();
    if (!terminal || now - started < quietStart || (name == lastStep && now - lastDrawn < redrawEvery))
        return;
    // \r to the line's start, the bar, then the rest of the old line erased.
    std::fprintf (stderr, "\r%s\033[K", progressLine (name, fraction, 30).c_str ());
    std::fflush (stderr);
    drawn = true;
    lastDrawn = now;
    lastStep = name;
}

void Progress::finish ()
{
    if (drawn)
    {
        std::fputs ("\r\033[K", stderr);
        std::fflush (stderr);
    }
    drawn = false;
    lastStep.clear ();
}

} // namespace Workbench
