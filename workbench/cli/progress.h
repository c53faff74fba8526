// A one-line progress bar on standard error for long runs: drawn only on a
// terminal, and only once a run has taken about a second.
#pragma once

#include <chrono>
#include <string>

namespace Workbench {

/** "[#########.........]  45%  typing the words", `width` characters of bar. */
std::string progressLine (const std::string& step, double fraction, int width);

class Progress
{
public:
    /** Draws on standard error when it is a terminal (`terminal` false: never). */
    explicit Progress (bool terminal);
    ~Progress () { finish (); }

    /** Where the run is: a named step and how far into it, 0 to 1. */
    void step (const std::string& name, double fraction);
    /** Clears the line, so that what is printed next starts clean. */
    void finish ();

    /** Whether standard error is a terminal. */
    static bool standardErrorIsTerminal ();

private:
    using Clock = std::chrono::steady_clock;
    bool terminal;
    bool drawn = false;
    Clock::time_point started = Clock::now ();
    Clock::time_point lastDrawn;
    std::string lastStep;
};

} // namespace Workbench
