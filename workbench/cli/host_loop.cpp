#include "workbench/cli/host_loop.h"

#if defined(_WIN32)
 #ifndef NOMINMAX
  #define NOMINMAX
 #endif
 #include <windows.h>
#endif

namespace Workbench {

void dispatchWindowMessages ()
{
#if defined(_WIN32)
    MSG message;
    while (PeekMessageW (&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage (&message);
        DispatchMessageW (&message);
    }
#endif
}

} // namespace Workbench
