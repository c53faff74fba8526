#include "score/file_bytes.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace Score {

bool readFileBytes (const std::string& path, std::vector<std::uint8_t>& data, std::string& error)
{
    std::error_code ignored;
    std::ifstream in (path, std::ios::binary | std::ios::ate);
    if (!in || std::filesystem::is_directory (path, ignored))
    {
        error = "cannot open " + path;
        return false;
    }
    const std::string tooLarge = path + " is larger than 64 MiB";
    data.clear ();
    // A file that says its size is refused before a byte is read; the loop below holds the rest to the limit.
    const auto size = static_cast<long long> (in.tellg ());
    if (size > static_cast<long long> (largestFile))
    {
        error = tooLarge;
        return false;
    }
    if (size > 0)
        data.reserve (static_cast<std::size_t> (size));
    in.seekg (0);
    char buf[65536];
    while (in.read (buf, sizeof buf) || in.gcount () > 0)
    {
        data.insert (data.end (), buf, buf + in.gcount ());
        if (data.size () > largestFile)
        {
            error = tooLarge;
            return false;
        }
    }
    if (in.bad ())
    {
        error = "cannot read " + path;
        return false;
    }
    return true;
}

bool readStandardInput (std::vector<std::uint8_t>& data, std::string& error)
{
    data.clear ();
    char buf[65536];
    std::size_t n;
    while ((n = std::fread (buf, 1, sizeof buf, stdin)) > 0)
    {
        data.insert (data.end (), buf, buf + n);
        if (data.size () > largestFile)
        {
            error = "standard input is larger than 64 MiB";
            return false;
        }
    }
    if (std::ferror (stdin))
    {
        error = "cannot read standard input";
        return false;
    }
    return true;
}

} // namespace Score
