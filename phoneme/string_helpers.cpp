#include "phoneme/string_helpers.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Zelmor {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

} // namespace

void split(const std::string& text, std::vector<std::string>& result, const std::string& separator,
           int32_t maxsplit)
{
    result.clear();
    int64_t budget = maxsplit < 0 ? std::numeric_limits<int32_t>::max() : maxsplit;
    const size_t n = text.size();

    if (separator.empty()) {
        size_t i = 0;
        while (i < n) {
            while (i < n && isBlank(text[i]))
                ++i;
            if (i == n)
                break;
            if (budget == 0) {
                // The remainder keeps its inner and trailing white space.
                result.push_back(text.substr(i));
                return;
            }
            size_t j = i;
            while (j < n && !isBlank(text[j]))
                ++j;
            result.push_back(text.substr(i, j - i));
            --budget;
            i = j;
        }
        return;
    }

    size_t start = 0;
    while (budget > 0) {
        size_t hit = text.find(separator, start);
        if (hit == std::string::npos)
            break;
        result.push_back(text.substr(start, hit - start));
        start = hit + separator.size();
        --budget;
    }
    result.push_back(text.substr(start));
}

std::string stripEnds(const std::string& text, const std::string& chars, int mode)
{
    auto drop = [&chars](char c) {
        return chars.empty() ? isBlank(c) : chars.find(c) != std::string::npos;
    };
    size_t first = 0;
    size_t last = text.size();
    if (mode != StripRight)
        while (first < last && drop(text[first]))
            ++first;
    if (mode != StripLeft)
        while (last > first && drop(text[last - 1]))
            --last;
    return text.substr(first, last - first);
}

std::string join(const std::string& separator, const std::vector<std::string>& parts)
{
    if (parts.empty())
        return std::string();
    size_t total = separator.size() * (parts.size() - 1);
    for (const auto& part : parts)
        total += part.size();
    std::string out;
    out.reserve(total);
    out += parts[0];
    for (size_t i = 1; i < parts.size(); ++i) {
        out += separator;
        out += parts[i];
    }
    return out;
}

std::string replace(const std::string& text, const std::string& old, const std::string& replacement,
                    int32_t count)
{
    int64_t budget = count < 0 ? std::numeric_limits<int64_t>::max() : count;
    std::string out;
    if (old.empty()) {
        // An empty pattern matches before every byte and at the end.
        out.reserve(text.size());
        for (size_t i = 0; i <= text.size(); ++i) {
            if (budget > 0) {
                out += replacement;
                --budget;
            }
            if (i < text.size())
                out += text[i];
        }
        return out;
    }
    out.reserve(text.size());
    size_t start = 0;
    while (budget > 0) {
        size_t hit = text.find(old, start);
        if (hit == std::string::npos)
            break;
        out.append(text, start, hit - start);
        out += replacement;
        start = hit + old.size();
        --budget;
    }
    out.append(text, start, std::string::npos);
    return out;
}

int32_t find(const std::string& text, const std::string& needle, int32_t start, int32_t end)
{
    const int64_t n = static_cast<int64_t>(text.size());
    int64_t from = start;
    int64_t to = end;
    if (from < 0)
        from = std::max<int64_t>(0, from + n);
    if (to < 0)
        to = std::max<int64_t>(0, to + n);
    to = std::min(to, n);
    if (from > n || to - from < static_cast<int64_t>(needle.size()))
        return -1;
    size_t hit = text.find(needle, static_cast<size_t>(from));
    if (hit == std::string::npos || static_cast<int64_t>(hit + needle.size()) > to)
        return -1;
    return static_cast<int32_t>(hit);
}

void splitlines(const std::string& text, std::vector<std::string>& result, bool keepends)
{
    result.clear();
    const size_t n = text.size();
    size_t start = 0;
    while (start < n) {
        size_t i = start;
        while (i < n && text[i] != '\n' && text[i] != '\r')
            ++i;
        size_t lineEnd = i;
        if (i < n)
            i += (text[i] == '\r' && i + 1 < n && text[i + 1] == '\n') ? 2 : 1;
        result.push_back(text.substr(start, (keepends ? i : lineEnd) - start));
        start = i;
    }
}

} // namespace Zelmor
