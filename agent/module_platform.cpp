#include "agent/module_platform.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace Kt {
namespace {

// The loader's handle can't be retained by itself, so the count is kept here, per handle.
std::map<void*, int>& retainCounts ()
{
    static std::map<void*, int> counts;
    return counts;
}

void retainHandle (void* handle) { ++retainCounts ()[handle]; }

void releaseHandle (void* handle)
{
    auto& counts = retainCounts ();
    auto found = counts.find (handle);
    if (found != counts.end () && --found->second <= 0)
        counts.erase (found);
}

const ModulePlatform loaderPlatform {retainHandle, releaseHandle, copyLoaderModulePath};
const ModulePlatform* installed = nullptr;

} // namespace

const ModulePlatform& modulePlatform () { return installed ? *installed : loaderPlatform; }

void setModulePlatform (const ModulePlatform* platform) { installed = platform; }

int retainCountOf (void* handle)
{
    const auto& counts = retainCounts ();
    const auto found = counts.find (handle);
    return found == counts.end () ? 0 : found->second;
}

std::string bundleOf (const std::string& objectPath, const char* separators)
{
    std::string path = objectPath;
    for (int level = 0; level < 3; ++level)
    {
        const auto slash = path.find_last_of (separators);
        if (slash == std::string::npos || slash == 0)
            return objectPath;
        path.resize (slash);
    }
    const std::string suffix = ".vst3";
    if (path.size () > suffix.size () && path.compare (path.size () - suffix.size (), suffix.size (), suffix) == 0)
        return path;
    return objectPath;
}

bool copyTruncated (const std::string& text, char* buffer, std::size_t size)
{
    if (!buffer || size == 0)
        return false;
    const std::size_t length = std::min (text.size (), size - 1);
    std::memcpy (buffer, text.data (), length);
    buffer[length] = 0;
    return true;
}

} // namespace Kt
