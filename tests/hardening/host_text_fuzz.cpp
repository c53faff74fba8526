// libFuzzer target: host texts from the fuzzer's bytes. Only the exceptions a pass
// may let out are caught inside the case; anything else, a crash, a note record out
// of shape or a host reference kept is a finding.
#include "tests/hardening/host_text_case.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, std::size_t size)
{
    const auto outcome = Hardening::runHostTextCase (data, size);
    if (!outcome.recordsWellFormed || !outcome.referencesBalanced)
        std::abort ();
    return 0;
}
