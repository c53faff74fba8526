// libFuzzer target: host texts from the fuzzer's bytes. Only the exceptions a pass
// may let out are caught inside the case; anything else, or a crash, is a finding.
#include "tests/hardening/host_text_case.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, std::size_t size)
{
    const auto outcome = Hardening::runHostTextCase (data, size);
    if (!outcome.recordsWellFormed)
        std::abort ();
    return 0;
}
