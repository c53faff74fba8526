// The loader's side of the module bookkeeping. On Linux the opaque handle that
// the loader passes to the entry point, on Windows the module's own HMODULE,
// stands where a bundle reference stands elsewhere; these three calls are all
// that the entry points ask of it, and tests replace them to see every retain
// and release.
#pragma once

#include <cstddef>
#include <string>

namespace Kt {

struct ModulePlatform
{
    void (*retain) (void* handle);
    void (*release) (void* handle);
    /** Writes the module's absolute path, zero-terminated, at most `size` bytes; false if unknown. */
    bool (*copyPath) (void* handle, char* buffer, std::size_t size);
};

/** The platform in force: the loader's own unless a test installed another. */
const ModulePlatform& modulePlatform ();
/** Installs `platform` (null restores the loader's own). */
void setModulePlatform (const ModulePlatform* platform);

/** How many retains the loader's own platform holds on `handle` now. */
int retainCountOf (void* handle);

/** The loader's own path lookup, one for each platform: the bundle folder that holds
    this module (the module's own file when it lies in no bundle), as for `copyPath`. */
bool copyLoaderModulePath (void* handle, char* buffer, std::size_t size);

/** The bundle three levels above a module file (X.vst3/Contents/<arch>/<file>),
    or `objectPath` itself when it lies in no bundle. */
std::string bundleOf (const std::string& objectPath, const char* separators);

/** Copies `text` into `buffer`, cut to `size - 1` bytes and zero-terminated. */
bool copyTruncated (const std::string& text, char* buffer, std::size_t size);

} // namespace Kt
