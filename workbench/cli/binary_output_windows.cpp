// Standard output and error in binary mode on Windows: the reports end their lines
// with "\n" alone, as on Linux, so that a report compares byte for byte with the
// Linux build's. Set before main runs, so no line goes out in text mode. Standard
// input too: a song read from it is bytes.
#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace {

const bool binaryOutput = [] {
    _setmode (_fileno (stdin), _O_BINARY);
    _setmode (_fileno (stdout), _O_BINARY);
    _setmode (_fileno (stderr), _O_BINARY);
    return true;
}();

} // namespace
