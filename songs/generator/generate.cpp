// Writes our own songs (.mid files and a MusicXML score): generate [FOLDER] (default: the current one);
// with --layouts after the folder, the files in other programs' layouts instead.
#include "songs/generator/compose.h"
#include "songs/generator/layouts.h"

#include <cstdio>
#include <fstream>

int main (int argc, char** argv)
{
    const std::string folder = argc > 1 ? argv[1] : ".";
    const bool layouts = argc > 2 && std::string (argv[2]) == "--layouts";
    for (const auto& song : layouts ? Songs::layouts () : Songs::all ())
    {
        const auto bytes = Songs::bytes (song);
        const std::string path = folder + "/" + song.file;
        std::ofstream out (path, std::ios::binary);
        out.write (reinterpret_cast<const char*> (bytes.data ()), static_cast<std::streamsize> (bytes.size ()));
        if (!out)
        {
            std::fprintf (stderr, "cannot write %s\n", path.c_str ());
            return 1;
        }
        std::printf ("%s  %zu bytes  %s\n", path.c_str (), bytes.size (), song.about.c_str ());
    }
    return 0;
}
