#include "workbench/cli/output_check.h"

#include "workbench/cli/file_output.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Workbench {

namespace {

namespace fs = std::filesystem;

fs::path pathOf (const std::string& utf8) { return fs::u8path (utf8); }

bool same (const std::string& a, const std::string& b)
{
    std::error_code ec;
    if (fs::equivalent (pathOf (a), pathOf (b), ec) && !ec)
        return true;
    // Neither need exist yet: two names of one place still clash.
    const auto na = fs::absolute (pathOf (a), ec).lexically_normal ();
    const auto nb = fs::absolute (pathOf (b), ec).lexically_normal ();
    return !ec && na == nb;
}

std::string lower (std::string s)
{
    for (char& c : s)
        c = static_cast<char> (std::tolower (static_cast<unsigned char> (c)));
    return s;
}

std::string upper (std::string s)
{
    for (char& c : s)
        c = static_cast<char> (std::toupper (static_cast<unsigned char> (c)));
    return s;
}

/** The extensions a file of this kind goes by. */
bool fits (const std::string& extension, const std::string& wanted)
{
    if (wanted == ".mid")
        return extension == ".mid" || extension == ".midi" || extension == ".kar" || extension == ".smf";
    return extension == wanted;
}

} // namespace

bool checkOutputs (const std::vector<PlannedOutput>& outputs, const std::vector<std::string>& inputs,
                   std::vector<std::string>& warnings, std::string& error)
{
    for (std::size_t i = 0; i < outputs.size (); ++i)
    {
        const auto& o = outputs[i];
        const fs::path path = pathOf (o.path);
        std::error_code ec;
        if (fs::is_directory (path, ec))
        {
            error = "cannot write " + o.what + " to " + o.path + ": it is a folder";
            return false;
        }
        const fs::path parent = path.has_parent_path () ? path.parent_path () : fs::path (".");
        if (!fs::is_directory (parent, ec))
        {
            error = "cannot write " + o.what + " to " + o.path + ": there is no folder " + parent.u8string ();
            return false;
        }
        if (!folderWritable (parent.u8string ()))
        {
            error = "cannot write " + o.what + " to " + o.path + ": the folder " + parent.u8string ()
                    + " is not writable";
            return false;
        }
        for (const auto& in : inputs)
            if (!in.empty () && in != "-" && same (o.path, in))
            {
                error = "will not write " + o.what + " to " + o.path + ": that is " + in + ", which this run reads";
                return false;
            }
        for (std::size_t j = 0; j < i; ++j)
            if (same (o.path, outputs[j].path))
            {
                error = o.path + " is named for two outputs: " + outputs[j].what + " and " + o.what;
                return false;
            }
        const std::string extension = lower (path.extension ().u8string ());
        if (!o.extension.empty () && !fits (extension, o.extension))
            warnings.push_back (o.path + ": " + o.what + " is written as " + upper (o.extension.substr (1))
                                + (extension.empty () ? ", but the name has no extension"
                                                      : ", but the name ends in " + extension));
    }
    return true;
}

} // namespace Workbench
