#include "agent/module_platform.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>

namespace Kt {

bool copyLoaderModulePath (void*, char* buffer, std::size_t size)
{
    if (!buffer || size == 0)
        return false;
    Dl_info info {};
    if (dladdr (reinterpret_cast<void*> (&copyLoaderModulePath), &info) == 0 || !info.dli_fname)
        return false;
    char resolved[PATH_MAX];
    if (!realpath (info.dli_fname, resolved))
        return false;
    return copyTruncated (bundleOf (resolved, "/"), buffer, size);
}

} // namespace Kt
