// lyric2phoneme: prints the phoneme elements of lyrics, one note per element.

#include "phoneme/dictionary_holder.h"
#include "phoneme/tools/lyric_line.h"

#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#ifndef CANTORELA_VERSION
#define CANTORELA_VERSION "unknown"
#endif

namespace {

const char usage[] =
    "usage: lyric2phoneme [--json] [LYRIC...]\n"
    "\n"
    "Converts each lyric into the phoneme strings of the notes it covers.\n"
    "Lyrics are taken from the arguments, or one per line from standard input\n"
    "when there are none. English words come from the built-in pronouncing\n"
    "dictionary or the letter-to-sound rules; kana from the kana tables.\n"
    "A lyric in the host's form word[hint] is read as the host reads it: the\n"
    "hint is its note's phonemes, and the elements after it are what the agent\n"
    "deals to the notes after it that have no text.\n"
    "\n"
    "Output: one element per line, with an empty line between lyrics.\n"
    "  --json        one JSON object per lyric and line:\n"
    "                {\"lyric\": \"...\", \"elements\": [\"...\", ...]}\n"
    "  -h, --help    this text\n"
    "  --version     the version\n"
    "  --            what follows is lyrics, even if it begins with -\n"
    "\n"
    "Exit status: 0 on success; 1 when a lyric was refused (invalid UTF-8, a\n"
    "hint of blanks), after the others are converted; 2 on a usage error.\n";

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

    // Returns false when the lyric is refused; the message names where it stands.
    bool convert(const std::string& lyric, const std::string& where)
    {
        const auto line = Zelmor::convertLine(lyric, *dictionary);
        if (!line.ok) {
            if (line.badByte >= 0)
                std::cerr << "lyric2phoneme: invalid UTF-8 in " << where << " at byte offset " << line.badByte << "\n";
            else
                std::cerr << "lyric2phoneme: " << where << ": " << line.error << "\n";
            return false;
        }
        std::string out;
        if (json) {
            out += "{\"lyric\": ";
            writeJsonString(out, lyric);
            out += ", \"elements\": [";
            for (size_t i = 0; i < line.elements.size(); ++i) {
                if (i)
                    out += ", ";
                writeJsonString(out, line.elements[i]);
            }
            out += "]}\n";
        } else {
            if (printed)
                out += '\n';
            for (const auto& element : line.elements) {
                out += element;
                out += '\n';
            }
        }
        ++printed;
        std::fwrite(out.data(), 1, out.size(), stdout);
        std::fflush(stdout);
        return true;
    }
};

int usageError(const std::string& reason)
{
    std::cerr << "usage: lyric2phoneme [--json] [LYRIC...]   (lyric2phoneme --help for more)\n"
              << "lyric2phoneme: " << reason << "\n";
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    Printer printer;
    std::vector<std::string> lyrics;
    bool endOfOptions = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (endOfOptions) {
            lyrics.push_back(arg);
        } else if (arg == "--") {
            endOfOptions = true;
        } else if (arg == "--help" || arg == "-h") {
            std::fputs(usage, stdout);
            return 0;
        } else if (arg == "--version") {
            std::puts("lyric2phoneme " CANTORELA_VERSION);
            return 0;
        } else if (arg == "--json") {
            printer.json = true;
        } else if (arg.size() > 2 && arg[0] == '-' && arg[1] == '-') {
            return usageError("unknown option " + arg);
        } else {
            lyrics.push_back(arg);
        }
    }

    printer.dictionary = Zelmor::dictionaryHolderMap();
    if (!printer.dictionary) {
        std::cerr << "lyric2phoneme: the pronouncing dictionary is missing\n";
        return 1;
    }

    // A refused lyric is said and passed over: the others are still converted.
    bool refused = false;
    if (!lyrics.empty()) {
        for (size_t i = 0; i < lyrics.size(); ++i)
            refused = !printer.convert(lyrics[i], "argument " + std::to_string(i + 1)) || refused;
        return refused ? 1 : 0;
    }
    std::string line;
    size_t lineNo = 0;
    while (std::getline(std::cin, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        refused = !printer.convert(line, "line " + std::to_string(lineNo)) || refused;
    }
    return refused ? 1 : 0;
}
