#include "workbench/loader/module_search.h"

#include <filesystem>
#include <system_error>

// The layout comes from the build (cmake/CantorelaInstall.cmake): the bundle's name, the
// installed VST3 folder relative to the installed program, and where this build put the
// program and the bundle.
#ifndef CANTORELA_BUNDLE_NAME
 #define CANTORELA_BUNDLE_NAME "CantorelaBetaAgent.vst3"
#endif
#ifndef CANTORELA_INSTALLED_VST3_FOLDER
 #define CANTORELA_INSTALLED_VST3_FOLDER ""
#endif
#ifndef CANTORELA_BUILD_PROGRAM_FOLDER
 #define CANTORELA_BUILD_PROGRAM_FOLDER ""
#endif
#ifndef CANTORELA_BUILD_BUNDLE
 #define CANTORELA_BUILD_BUNDLE ""
#endif

namespace Sim {
namespace {

namespace fs = std::filesystem;

std::string inFolder (const std::string& folder, const std::string& relative)
{
    return (fs::u8path (folder) / fs::u8path (relative)).lexically_normal ().u8string ();
}

} // namespace

std::vector<std::string> defaultModulePlaces ()
{
    std::vector<std::string> places;
    const std::string program = programFolder ();
    if (!program.empty ())
        places.push_back (inFolder (program, inFolder (CANTORELA_INSTALLED_VST3_FOLDER, CANTORELA_BUNDLE_NAME)));
    // A build's own module only for the program of that build: an installed copy must not
    // pick up whatever a build tree on the same machine holds.
    std::error_code error;
    if (!program.empty () && *CANTORELA_BUILD_BUNDLE
        && fs::equivalent (fs::u8path (program), fs::u8path (CANTORELA_BUILD_PROGRAM_FOLDER), error))
        places.push_back (CANTORELA_BUILD_BUNDLE);
    for (const auto& folder : standardVst3Folders ())
        places.push_back (inFolder (folder, CANTORELA_BUNDLE_NAME));
    return places;
}

bool findDefaultModule (std::string& path, std::string& error)
{
    const auto places = defaultModulePlaces ();
    for (const auto& place : places)
    {
        std::error_code ignored;
        if (fs::exists (fs::u8path (place), ignored))
        {
            path = place;
            return true;
        }
    }
    error = "found no " CANTORELA_BUNDLE_NAME " (looked in ";
    for (size_t i = 0; i < places.size (); ++i)
        error += (i > 0 ? ", " : "") + places[i];
    error += "); name the module with --module PATH";
    return false;
}

} // namespace Sim
