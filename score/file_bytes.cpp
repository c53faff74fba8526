#include "score/file_bytes.h"

#include <fstream>

namespace Score {

bool readFileBytes (const std::string& path, std::vector<std::uint8_t>& data, std::string& error)
{
    std::ifstream in (path, std::ios::binary);
    if (!in)
    {
        error = "cannot open " + path;
        return false;
    }
    constexpr std::size_t limit = 64u << 20;
    data.clear ();
    char buf[65536];
    while (in.read (buf, sizeof buf) || in.gcount () > 0)
    {
        data.insert (data.end (), buf, buf + in.gcount ());
        if (data.size () > limit)
        {
            error = path + " is larger than 64 MiB";
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

} // namespace Score
