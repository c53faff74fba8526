#include "workbench/loader/module_search.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Sim {

std::string programFolder ()
{
    std::error_code error;
    const auto self = std::filesystem::read_symlink ("/proc/self/exe", error);
    return error ? std::string () : self.parent_path ().string ();
}

std::vector<std::string> standardVst3Folders ()
{
    std::vector<std::string> folders;
    if (const char* home = std::getenv ("HOME"); home && *home)
        folders.push_back (std::string (home) + "/.vst3");
    folders.push_back ("/usr/lib/vst3");
    folders.push_back ("/usr/local/lib/vst3");
    return folders;
}

} // namespace Sim
