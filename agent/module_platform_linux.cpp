#include "agent/module_platform.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

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

// The bundle is the folder three levels above the shared object: X.vst3/Contents/<arch>/X.so.
std::string bundleOf (const std::string& objectPath)
{
    std::string path = objectPath;
    for (int level = 0; level < 3; ++level)
    {
        const auto slash = path.rfind ('/');
        if (slash == std::string::npos || slash == 0)
            return objectPath;
        path.resize (slash);
    }
    const std::string suffix = ".vst3";
    if (path.size () > suffix.size () && path.compare (path.size () - suffix.size (), suffix.size (), suffix) == 0)
        return path;
    return objectPath;
}

bool copyModulePath (void*, char* buffer, std::size_t size)
{
    if (!buffer || size == 0)
        return false;
    Dl_info info {};
    if (dladdr (reinterpret_cast<void*> (&copyModulePath), &info) == 0 || !info.dli_fname)
        return false;
    char resolved[PATH_MAX];
    if (!realpath (info.dli_fname, resolved))
        return false;
    const std::string bundle = bundleOf (resolved);
    const std::size_t length = std::min (bundle.size (), size - 1);
    std::memcpy (buffer, bundle.data (), length);
    buffer[length] = 0;
    return true;
}

const ModulePlatform loaderPlatform {retainHandle, releaseHandle, copyModulePath};
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

} // namespace Kt
