#include "workbench/cli/file_output.h"

#include <algorithm>

#ifndef NOMINMAX
 #define NOMINMAX
#endif
#include <windows.h>

namespace Workbench {
namespace {

std::wstring wide (const std::string& text)
{
    const int units = MultiByteToWideChar (CP_UTF8, 0, text.data (), static_cast<int> (text.size ()), nullptr, 0);
    std::wstring out (static_cast<std::size_t> (units > 0 ? units : 0), L'\0');
    if (units > 0)
        MultiByteToWideChar (CP_UTF8, 0, text.data (), static_cast<int> (text.size ()), out.data (), units);
    return out;
}

std::string lastErrorText ()
{
    const DWORD code = GetLastError ();
    char* message = nullptr;
    FormatMessageA (FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                    nullptr, code, 0, reinterpret_cast<LPSTR> (&message), 0, nullptr);
    std::string text = message ? message : "error " + std::to_string (code);
    LocalFree (message);
    while (!text.empty () && (text.back () == '\n' || text.back () == '\r' || text.back () == ' ' || text.back () == '.'))
        text.pop_back ();
    return text;
}

} // namespace

bool replaceFile (const std::string& path, const std::vector<std::uint8_t>& bytes, std::string& error)
{
    // Beside the target, so that the move stays within one volume; named after
    // the process, and created only if it isn't there yet.
    const std::wstring target = wide (path);
    const std::wstring temp = target + L".partial-" + std::to_wstring (GetCurrentProcessId ());
    auto fail = [&] (bool created) {
        error = "cannot write " + path + ": " + lastErrorText ();
        if (created)
            DeleteFileW (temp.c_str ());
        return false;
    };
    HANDLE file = CreateFileW (temp.c_str (), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return fail (false);
    std::size_t done = 0;
    while (done < bytes.size ())
    {
        const DWORD chunk = static_cast<DWORD> (std::min<std::size_t> (bytes.size () - done, 1u << 30));
        DWORD written = 0;
        if (!WriteFile (file, bytes.data () + done, chunk, &written, nullptr) || written == 0)
        {
            const DWORD code = GetLastError ();
            CloseHandle (file);
            SetLastError (code);
            return fail (true);
        }
        done += written;
    }
    if (!FlushFileBuffers (file))
    {
        const DWORD code = GetLastError ();
        CloseHandle (file);
        SetLastError (code);
        return fail (true);
    }
    if (!CloseHandle (file)
        || !MoveFileExW (temp.c_str (), target.c_str (), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return fail (true);
    return true;
}

bool folderWritable (const std::string& folder)
{
    // Windows keeps who may write in access lists; trying is the only sure test, and the write does that.
    const DWORD attributes = GetFileAttributesW (wide (folder).c_str ());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::string temporaryCopy (const std::vector<std::uint8_t>& bytes, std::string& error)
{
    wchar_t dir[MAX_PATH + 1], name[MAX_PATH + 1];
    if (!GetTempPathW (MAX_PATH + 1, dir) || !GetTempFileNameW (dir, L"wb", 0, name))
    {
        error = "cannot make a temporary file: " + lastErrorText ();
        return {};
    }
    const int units = WideCharToMultiByte (CP_UTF8, 0, name, -1, nullptr, 0, nullptr, nullptr);
    std::string path (static_cast<std::size_t> (units > 1 ? units - 1 : 0), '\0');
    WideCharToMultiByte (CP_UTF8, 0, name, -1, path.data (), units, nullptr, nullptr);
    if (!replaceFile (path, bytes, error))
    {
        DeleteFileW (name);
        return {};
    }
    return path;
}

} // namespace Workbench
