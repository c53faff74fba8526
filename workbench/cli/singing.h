// Hearing a run: each synthesiser's note list sung by the sing worker, a process of its own so
// that no fault of the voice's engine takes the workbench down; one WAV per synthesiser, or all
// of them mixed.
#pragma once

#include "workbench/cli/session.h"

#include <cstddef>
#include <functional>
#include <string>

namespace Workbench {

struct SingOptions
{
    std::string worker;     ///< the sing executable
    std::string mixPath;    ///< --sing: every synthesiser mixed into this WAV; empty for none
    std::string tracksDir;  ///< --sing-tracks: one WAV per synthesiser in this folder; empty for none
    double timeout = 0.0;   ///< seconds one worker may take; 0 for 30 s and half the song's length
};

/** The sing worker's input for one synthesiser: its records as JSON, and the song's length. */
std::string singInput (const Received& synth, double duration);

/** The file of the `index`-th synthesiser (from 0) in the report's order: "01 Voice - Slot 1.wav". */
std::string trackFileName (std::size_t index, const Received& synth);

/** Sings every synthesiser as `options` ask, telling `progress` how far it is. False with a
    message when a worker cannot start, fails, dies or runs out of time; no WAV is left half-written. */
bool sing (const Outcome& outcome, const SingOptions& options,
           const std::function<void (const std::string&, double)>& progress, std::string& error);

} // namespace Workbench
