// lyric2phoneme: prints the phoneme elements of lyrics, one note per element.

#include "phoneme/dictionary_holder.h"
#include "phoneme/lyric_converter.h"

#include <utf8.h>

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace {

const char usage[] =
    "usage: lyric2phoneme [--json] [LYRIC...]\n"
    "\n"
    "Converts each lyric into the phoneme strings of the notes it covers.\n"
    "Lyrics are taken from the arguments, or one per line from standard input\n"
    "when there are none. English words come from the built-in pronouncing\n"
    "dictionary or the letter-to-sound rules; kana from the kana tables.\n"
    "\n"
    "Output: one element per line, with an empty line between lyrics.\n"
    "  --json    one JSON object per lyric and line:\n"
    "            {\"lyric\": \"...\", \"elements\": [\"...\", ...]}\n"
    "  --help    this text\n"
    "\n"
    "Exit status: 0 on success, 1 on invalid UTF-8, 2 on a usage error.\n";

void writeJsonString(std::string& out, const std::string& text)
{
    out += '"';
    for (unsigned char c : text) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (c < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                out += buf;
            } else {
                out += static_cast<char>(c);
            }
        }
    }
    out += '"';
}

struct Printer {
    bool json = false;
    size_t printed = 0;
    const Zelmor::PronouncingDictionary* dictionary = nullptr;

    // Returns false when the lyric is not valid UTF-8.
    bool convert(const std::string& lyric, const std::string& where)
    {
        const auto bad = utf8::find_invalid(lyric.begin(), lyric.end());
        if (bad != lyric.end()) {
            std::cerr << "lyric2phoneme: invalid UTF-8 in " << where << " at byte offset "
                      << (bad - lyric.begin()) << "\n";
            return false;
        }
        const auto elements = Zelmor::convertLyric(lyric, *dictionary);
        std::string out;
        if (json) {
            out += "{\"lyric\": ";
            writeJsonString(out, lyric);
            out += ", \"elements\": [";
            for (size_t i = 0; i < elements.size(); ++i) {
                if (i)
                    out += ", ";
                writeJsonString(out, elements[i]);
            }
            out += "]}\n";
        } else {
            if (printed)
                out += '\n';
            for (const auto& element : elements) {
                out += element;
                out += '\n';
            }
        }
        ++printed;
        std::fwrite(out.data(), 1, out.size(), stdout);
        return true;
    }
};

} // namespace

int main(int argc, char** argv)
{
    Printer printer;
    std::vector<std::string> lyrics;
    bool endOfOptions = false;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (!endOfOptions && std::strcmp(arg, "--") == 0) {
            endOfOptions = true;
        } else if (!endOfOptions && std::strcmp(arg, "--help") == 0) {
            std::fputs(usage, stdout);
            return 0;
        } else if (!endOfOptions && std::strcmp(arg, "--json") == 0) {
            printer.json = true;
        } else if (!endOfOptions && arg[0] == '-' && arg[1] == '-') {
            std::cerr << "lyric2phoneme: unknown option " << arg << "\n" << usage;
            return 2;
        } else {
            lyrics.emplace_back(arg);
        }
    }

    printer.dictionary = Zelmor::dictionaryHolderMap();
    if (!printer.dictionary) {
        std::cerr << "lyric2phoneme: the pronouncing dictionary is missing\n";
        return 1;
    }

    if (!lyrics.empty()) {
        for (size_t i = 0; i < lyrics.size(); ++i)
            if (!printer.convert(lyrics[i], "argument " + std::to_string(i + 1)))
                return 1;
        return 0;
    }
    std::string line;
    size_t lineNo = 0;
    while (std::getline(std::cin, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!printer.convert(line, "line " + std::to_string(lineNo)))
            return 1;
    }
    return 0;
}
