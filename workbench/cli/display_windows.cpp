#include "workbench/cli/display.h"

#ifndef NOMINMAX
 #define NOMINMAX
#endif
#include <windows.h>

namespace Workbench {

// The desktop and its window manager belong to the system: there is nothing to
// open or to make ready.
void* openDisplay (std::string&) { return GetDesktopWindow (); }

void closeDisplay (void*) {}

} // namespace Workbench
