// The voice's engine is built for Linux only.
#include "workbench/cli/singing.h"

namespace Workbench {

bool sing (const Outcome&, const SingOptions&, const std::function<void (const std::string&, double)>&,
           std::string& error)
{
    error = "singing needs the Linux build: the voice (Festival) is not built for Windows";
    return false;
}

} // namespace Workbench
