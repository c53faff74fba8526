#pragma once
// Byte-string helpers of the familiar split/strip/join kind. They know no
// encoding: a character is a byte, and white space is the ASCII set.

#include <cstdint>
#include <string>
#include <vector>

namespace Zelmor {

// Clears `result`, then cuts `text`. An empty separator cuts at runs of white
// space and drops empty pieces; any other separator keeps empty pieces. A
// negative `maxsplit` means no limit.
void split(const std::string& text, std::vector<std::string>& result,
           const std::string& separator = std::string(), int32_t maxsplit = -1);

// Which ends `stripEnds` trims.
enum StripMode : int { StripLeft = 0, StripRight = 1, StripBoth = 2 };

// Trims white space, or any byte of a non-empty `chars`, from the chosen ends.
std::string stripEnds(const std::string& text, const std::string& chars, int mode);

inline std::string strip(const std::string& text, const std::string& chars = std::string())
{
    return stripEnds(text, chars, StripBoth);
}

std::string join(const std::string& separator, const std::vector<std::string>& parts);

// Replaces at most `count` occurrences of `old`, left to right; all if negative.
std::string replace(const std::string& text, const std::string& old, const std::string& replacement,
                    int32_t count = -1);

// First index of `needle` within text[start, end), or -1. Negative bounds count
// from the end of the text.
int32_t find(const std::string& text, const std::string& needle, int32_t start = 0,
             int32_t end = 2147483647);

// Cuts at "\n", "\r" and "\r\n". No empty piece follows a final line end.
void splitlines(const std::string& text, std::vector<std::string>& result, bool keepends = false);

} // namespace Zelmor
