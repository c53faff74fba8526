#include "workbench/cli/file_output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Workbench {

bool replaceFile (const std::string& path, const std::vector<std::uint8_t>& bytes, std::string& error)
{
    auto fail = [&] (const std::string& temp) {
        error = "cannot write " + path + ": " + std::strerror (errno);
        if (!temp.empty ())
            ::unlink (temp.c_str ());
        return false;
    };
    // Beside the target, so that the rename stays within one file system.
    std::string temp = path + ".XXXXXX";
    const int fd = ::mkstemp (temp.data ());
    if (fd < 0)
        return fail ({});
    const mode_t mask = ::umask (0);
    ::umask (mask);
    ::fchmod (fd, 0666 & ~mask);  // as an ordinary new file, not mkstemp's owner-only one

    std::size_t done = 0;
    while (done < bytes.size ())
    {
        const ssize_t n = ::write (fd, bytes.data () + done, bytes.size () - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
        {
            const int saved = errno;
            ::close (fd);
            errno = saved;
            return fail (temp);
        }
        done += static_cast<std::size_t> (n);
    }
    if (::fsync (fd) != 0)
    {
        const int saved = errno;
        ::close (fd);
        errno = saved;
        return fail (temp);
    }
    if (::close (fd) != 0 || std::rename (temp.c_str (), path.c_str ()) != 0)
        return fail (temp);
    return true;
}

bool folderWritable (const std::string& folder) { return ::access (folder.c_str (), W_OK | X_OK) == 0; }

std::string temporaryCopy (const std::vector<std::uint8_t>& bytes, std::string& error)
{
    const char* dir = std::getenv ("TMPDIR");
    std::string path = std::string (dir && *dir ? dir : "/tmp") + "/workbench-XXXXXX";
    const int fd = ::mkstemp (path.data ());
    std::size_t done = 0;
    while (fd >= 0 && done < bytes.size ())
    {
        const ssize_t n = ::write (fd, bytes.data () + done, bytes.size () - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += static_cast<std::size_t> (n);
    }
    if (fd < 0 || done < bytes.size () || ::close (fd) != 0)
    {
        error = "cannot make a temporary file: " + std::string (std::strerror (errno));
        if (fd >= 0)
            ::unlink (path.c_str ());
        return {};
    }
    return path;
}

} // namespace Workbench
