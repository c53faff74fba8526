// One project built from arbitrary bytes: the host's names, lyrics, "phoneme"
// texts and "lyph" values are raw UTF-16 taken from the input, unpaired
// surrogates and huge lengths included, and the agent's passes run over it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Hardening {

/** How the case ended; any exception other than these leaves runHostTextCase. */
struct HostTextOutcome
{
    int passesRun = 0;
    int utf8Errors = 0;    // utf8::exception and its kinds
    int lengthErrors = 0;  // std::length_error
    int rangeErrors = 0;   // std::out_of_range
    /** Every note record the synthesiser received kept its fixed fields and a phoneme count of 1 to 8. */
    bool recordsWellFormed = true;
    /** Every host object got back every reference it handed out, exceptions or not. */
    bool referencesBalanced = true;
};

/**
 * Splits `data` into UTF-16 texts (two bytes a unit, a zero unit ends a text;
 * a text that starts with 0xFFFF repeats its remainder to a length read from
 * the next unit) and feeds them to the project in a fixed order.
 */
HostTextOutcome runHostTextCase (const uint8_t* data, std::size_t size);

/** The same with the texts given directly (host_text_test.cpp builds them itself). */
HostTextOutcome runHostTextCase (const std::vector<std::u16string>& texts);

} // namespace Hardening
