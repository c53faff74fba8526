#include "phoneme/letter_to_sound.h"

#include <re2/re2.h>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace Zelmor {

namespace {

// Letter classes of the rule notation.
const char vowelClass[] = "[aeiouy]+";
const char consonantClass[] = "[bcdfghjklmnpqrstvwxz]";
const char consonantsClass[] = "[bcdfghjklmnpqrstvwxz]*";
const char suffixClass[] = "(er|e|es|ed|ing|ely)";
const char sibilantClass[] = "(s|c|g|z|x|j|ch|sh)";
const char frontVowelClass[] = "[eiy]";
const char voicedClass[] = "[bdvgjlmnrwz]";
const char narrowingClass[] = "(t|s|r|d|l|z|n|j|th|ch|sh)";

re2::RE2::Options contextOptions()
{
    // Byte semantics, as the texts are plain ASCII after cleaning.
    re2::RE2::Options options;
    options.set_encoding(re2::RE2::Options::EncodingLatin1);
    options.set_log_errors(false);
    return options;
}

} // namespace

const LetterToSoundRule letterToSoundRules[letterToSoundRuleCount] = {
    // a
    {"", "a", " ", "ax"},
    {" ", "are", " ", "aa r"},
    {" ", "ar", "o", "ax r"},
    {"", "ar", "#", "eh r"},
    {" ^", "as", "#", "ey s"},
    {"", "a", "wa", "ax"},
    {"", "aw", "", "ao"},
    {" :", "any", "", "eh n iy"},
    {"", "a", "^+#", "ey"},
    {"#:", "ally", "", "ax l iy"},
    {" ", "al", "#", "ax l"},
    {"", "again", "", "ax g eh n"},
    {"#:", "ag", "e", "ih jh"},
    {"", "a", "^+:#", "ae"},
    {" :", "a", "^+ ", "ey"},
    {"", "a", "^%", "ey"},
    {" ", "arr", "", "ax r"},
    {"", "arr", "", "ae r"},
    {" :", "ar", " ", "aa r"},
    {"", "ar", " ", "er"},
    {"", "ar", "", "aa r"},
    {"", "air", "", "eh r"},
    {"", "ai", "", "ey"},
    {"", "ay", "", "ey"},
    {"", "au", "", "ao"},
    {"#:", "al", " ", "ax l"},
    {"#:", "als", " ", "ax l z"},
    {"", "alk", "", "ao k"},
    {"", "al", "^", "ao l"},
    {" :", "able", "", "ey b ax l"},
    {"", "able", "", "ax b ax l"},
    {"", "ang", "+", "ey n jh"},
    {"", "a", "", "ae"},
    // b
    {" ", "be", "^#", "b ih"},
    {"", "being", "", "b iy ih nx"},
    {" ", "both", " ", "b ow th"},
    {" ", "bus", "#", "b ih z"},
    {"", "buil", "", "b ih l"},
    {"", "b", "", "b"},
    // c
    {" ", "ch", "^", "k"},
    {"^e", "ch", "", "k"},
    {"", "ch", "", "ch"},
    {" s", "ci", "#", "s ay"},
    {"", "ci", "a", "sh"},
    {"", "ci", "o", "sh"},
    {"", "ci", "en", "sh"},
    {"", "c", "+", "s"},
    {"", "ck", "", "k"},
    {"", "com", "%", "k ah m"},
    {"", "c", "", "k"},
    // d
    {"#:", "ded", " ", "d ih d"},
    {".e", "d", " ", "d"},
    {"#^:e", "d", " ", "t"},
    {" ", "de", "^#", "d ih"},
    {" ", "do", " ", "d uw"},
    {" ", "does", "", "d ah z"},
    {" ", "doing", "", "d uw ih nx"},
    {" ", "dow", "", "d aw"},
    {"", "du", "a", "jh uw"},
    {"", "d", "", "d"},
    // e
    {"#:", "e", " ", ""},
    {"'^:", "e", " ", ""},
    {" :", "e", " ", "iy"},
    {"#", "ed", " ", "d"},
    {"#:", "e", "d ", ""},
    {"", "ev", "er", "eh v"},
    {"", "e", "^%", "iy"},
    {"", "eri", "#", "iy r iy"},
    {"", "eri", "", "eh r ih"},
    {"#:", "er", "#", "er"},
    {"", "er", "#", "eh r"},
    {"", "er", "", "er"},
    {" ", "even", "", "iy v eh n"},
    {"#:", "e", "w", ""},
    {"@", "ew", "", "uw"},
    {"", "ew", "", "y uw"},
    {"", "e", "o", "iy"},
    {"#:&", "es", " ", "ih z"},
    {"#:", "e", "s ", ""},
    {"#:", "ely", " ", "l iy"},
    {"#:", "ement", "", "m eh n t"},
    {"", "eful", "", "f uh l"},
    {"", "ee", "", "iy"},
    {"", "earn", "", "er n"},
    {" ", "ear", "^", "er"},
    {"", "ead", "", "eh d"},
    {"#:", "ea", " ", "iy ax"},
    {"", "ea", "su", "eh"},
    {"", "ea", "", "iy"},
    {"", "eigh", "", "ey"},
    {"", "ei", "", "iy"},
    {" ", "eye", "", "ay"},
    {"", "ey", "", "iy"},
    {"", "eu", "", "y uw"},
    {"", "e", "", "eh"},
    // f
    {"", "ful", "", "f uh l"},
    {"", "f", "", "f"},
    // g
    {"", "giv", "", "g ih v"},
    {" ", "g", "i^", "g"},
    {"", "ge", "t", "g eh"},
    {"su", "gges", "", "g jh eh s"},
    {" b#", "g", "", "g"},
    {"", "g", "+", "jh"},
    {"", "great", "", "g r ey t"},
    {"#", "gh", "", ""},
    {"", "g", "", "g"},
    // h
    {" ", "hav", "", "hh ae v"},
    {" ", "here", "", "hh iy r"},
    {" ", "hour", "", "aw er"},
    {"", "how", "", "hh aw"},
    {"", "h", "#", "hh"},
    {"", "h", "", ""},
    // i
    {" ", "in", "", "ih n"},
    {" ", "i", " ", "ay"},
    {"", "in", "d", "ay n"},
    {"", "ier", "", "iy er"},
    {"#:r", "ied", " ", "iy d"},
    {"", "ied", " ", "ay d"},
    {"", "ien", "", "iy eh n"},
    {"", "ie", "t", "ay eh"},
    {" :", "i", "%", "ay"},
    {"", "i", "%", "iy"},
    {"", "ie", "", "iy"},
    {"", "i", "^+:#", "ih"},
    {"", "ir", "#", "ay r"},
    {"", "iz", "%", "ay z"},
    {"", "is", "%", "ay z"},
    {"", "id", "%", "ay"},
    {"+^", "i", "^+", "ih"},
    {"", "i", "t%", "ay"},
    {"#^:", "i", "^+", "ih"},
    {"", "i", "^+", "ay"},
    {"", "ir", "", "er"},
    {"", "igh", "", "ay"},
    {"", "ild", "", "ay l d"},
    {"", "ign", " ", "ay n"},
    {"", "ign", "^", "ay n"},
    {"", "ign", "%", "ay n"},
    {"", "ique", "", "iy k"},
    {"", "i", "", "ih"},
    // j
    {"", "j", "", "jh"},
    // k
    {" ", "k", "n", ""},
    {"", "k", "", "k"},
    // l
    {"", "lo", "c#", "l ow"},
    {"l", "l", "", ""},
    {"#^:", "l", "%", "ax l"},
    {"", "lead", "", "l iy d"},
    {"", "l", "", "l"},
    // m
    {"", "mov", "", "m uw v"},
    {"", "m", "", "m"},
    // n
    {"e", "ng", "+", "n jh"},
    {"", "ng", "r", "nx g"},
    {"", "ng", "#", "nx g"},
    {"", "ngl", "%", "nx g ax l"},
    {"", "ng", "", "nx"},
    {"", "nk", "", "nx k"},
    {" ", "now", " ", "n aw"},
    {"", "n't", "", "n t"},
    {"", "n'", " ", "nx"},
    {"", "n", "", "n"},
    // o
    {"", "of", " ", "ax v"},
    {"", "orough", "", "er ow"},
    {"#:", "or", " ", "er"},
    {"#:", "ors", " ", "er z"},
    {"", "or", "", "ao r"},
    {" ", "one", "", "w ah n"},
    {"", "ow", "", "ow"},
    {" ", "over", "", "ow v er"},
    {"", "ov", "", "ah v"},
    {"", "o", "^%", "ow"},
    {"", "o", "^en", "ow"},
    {"", "o", "^i#", "ow"},
    {"", "ol", "d", "ow l"},
    {"", "ought", "", "ao t"},
    {"", "ough", "", "ah f"},
    {" ", "ou", "", "aw"},
    {"h", "ou", "s#", "aw"},
    {"", "ous", "", "ax s"},
    {"", "our", "", "ao r"},
    {"", "ould", "", "uh d"},
    {" ", "ou", "^l", "ah"},
    {"", "oup", "", "uw p"},
    {"", "ou", "", "aw"},
    {"", "oy", "", "oy"},
    {"", "oing", "", "ow ih nx"},
    {"", "oi", "", "oy"},
    {"", "oor", "", "ao r"},
    {"", "ook", "", "uh k"},
    {"", "ood", "", "uh d"},
    {"", "oo", "", "uw"},
    {"", "o", "e", "ow"},
    {"", "o", " ", "ow"},
    {"", "oa", "", "ow"},
    {" ", "only", "", "ow n l iy"},
    {" ", "once", "", "w ah n s"},
    {"", "on't", "", "ow n t"},
    {"c", "o", "n", "aa"},
    {"", "o", "ng", "ao"},
    {" ^:", "o", "n", "ah"},
    {"i", "on", "", "ax n"},
    {"#:", "on", " ", "ax n"},
    {"#^", "on", "", "ax n"},
    {"", "ost", " ", "ow"},
    {"", "of", "^", "ao f"},
    {"", "other", "", "ah dh er"},
    {"", "oss", " ", "ah m"},
    {"#^:", "om", "", "ah m"},
    {"", "o", "", "aa"},
    // p
    {"", "ph", "", "f"},
    {"", "peop", "", "p iy p"},
    {"", "pow", "", "p aw"},
    {"", "put", " ", "p uh t"},
    {"", "p", "", "p"},
    // q
    {"", "quar", "", "k w ao r"},
    {"", "qu", "", "k w"},
    {"", "q", "", "k"},
    // r
    {" ", "re", "^#", "r iy"},
    {"", "r", "", "r"},
    // s
    {"", "sh", "", "sh"},
    {"#", "sion", "", "zh ax n"},
    {"", "some", "", "s ah m"},
    {"#", "sur", "#", "zh er"},
    {"", "sur", "#", "sh er"},
    {"#", "su", "#", "zh uw"},
    {"#", "ssu", "#", "sh uw"},
    {"#", "sed", " ", "z d"},
    {"#", "s", "#", "z"},
    {"", "said", "", "s eh d"},
    {"^", "sion", "", "sh ax n"},
    {"", "s", "s", ""},
    {".", "s", " ", "z"},
    {"#:.e", "s", " ", "z"},
    {"#^:##", "s", " ", "z"},
    {"#^:#", "s", " ", "s"},
    {"u", "s", " ", "s"},
    {" :#", "s", " ", "z"},
    {" ", "sch", "", "s k"},
    {"", "sc", "+", ""},
    {"#", "sm", "", "z m"},
    {"#", "sn", "'", "z ax n"},
    {"", "s", "", "s"},
    // t
    {" ", "the", " ", "dh ax"},
    {"", "to", " ", "t uw"},
    {"", "that", "", "dh ae t"},
    {" ", "this", " ", "dh ih s"},
    {" ", "they", "", "dh ey"},
    {" ", "there", "", "dh eh r"},
    {"", "ther", "", "dh er"},
    {"", "their", "", "dh eh r"},
    {" ", "than", " ", "dh ae n"},
    {" ", "them", " ", "dh eh m"},
    {"", "these", " ", "dh iy z"},
    {" ", "then", "", "dh eh n"},
    {"", "through", "", "th r uw"},
    {"", "those", "", "dh ow z"},
    {"", "though", " ", "dh ow"},
    {" ", "thus", "", "dh ah s"},
    {"", "th", "", "th"},
    {"#:", "ted", " ", "t ih d"},
    {"s", "ti", "#n", "ch"},
    {"", "ti", "o", "sh"},
    {"", "ti", "a", "sh"},
    {"", "tien", "", "sh ax n"},
    {"", "tur", "#", ""},
    {"", "tu", "a", "ch uw"},
    {" ", "two", "", "t uw"},
    {"", "tt", "", "t"},
    {"", "t", "", "t"},
    // u
    {" ", "un", "i", "y uw n"},
    {" ", "un", "", "ah n"},
    {" ", "upon", "", "ax p ao n"},
    {"@", "ur", "#", "uh r"},
    {"", "ur", "#", "y uh r"},
    {"", "ur", "", "er"},
    {"", "u", "^ ", "ah"},
    {"", "u", "^^", "ah"},
    {"", "uy", "", "ay"},
    {" g", "u", "#", ""},
    {"g", "u", "%", ""},
    {"g", "u", "#", "w"},
    {"#n", "u", "", "y uw"},
    {"@", "u", "", "uw"},
    {"", "u", "", "y uw"},
    // v
    {"", "vocal", "", "v ow k ax l"},
    {"", "view", "", "v y uw"},
    {"", "v", "", "v"},
    // w
    {" ", "were", "", "w er"},
    {"", "wa", "s", "w aa"},
    {"", "wa", "t", "w aa"},
    {"", "where", "", "wh eh r"},
    {"", "what", "", "wh aa t"},
    {"", "whol", "", "hh ow l"},
    {"", "who", "", "hh uw"},
    {"", "wh", "", "wh"},
    {"", "war", "", "w ao r"},
    {"", "wor", "^", "w er"},
    {"", "wr", "", "r"},
    {"", "w", "", "w"},
    // x
    {"", "x", "", "k s"},
    // y
    {"", "young", "", "y ah nx"},
    {" ", "you", "", "y uw"},
    {" ", "yes", "", "y eh s"},
    {" ", "y", "", "y"},
    {"#^:", "y", " ", "iy"},
    {"#^:", "y", "i", "iy"},
    {" :", "y", " ", "ay"},
    {" :", "y", "#", "ay"},
    {" :", "y", "^+:#", "ih"},
    {" :", "y", "^#", "ay"},
    {"", "y", "", "ih"},
    // z
    {"", "z", "", "z"},
    // '
    {"", "'", "", ""},
};

std::string contextPattern(const std::string& context, bool atStart, bool atEnd)
{
    std::string pattern;
    pattern.reserve(context.size() * 12 + 4);
    if (atStart)
        pattern += '^';
    pattern += '(';
    for (char c : context) {
        switch (c) {
        case '#': pattern += vowelClass; break;
        case '%': pattern += suffixClass; break;
        case '&': pattern += sibilantClass; break;
        case '+': pattern += frontVowelClass; break;
        case '.': pattern += voicedClass; break;
        case ':': pattern += consonantsClass; break;
        case '@': pattern += narrowingClass; break;
        case '^': pattern += consonantClass; break;
        default: pattern += c; break;
        }
    }
    pattern += ')';
    if (atEnd)
        pattern += '$';
    return pattern;
}

std::unique_ptr<re2::RE2> compileContext(const std::string& context, bool atStart, bool atEnd)
{
    static const re2::RE2::Options options = contextOptions();
    return std::make_unique<re2::RE2>(contextPattern(context, atStart, atEnd), options);
}

// RE2 allocates a few process-wide objects on first use and never frees them. If the
// library left the process with a module that was unloaded, they would be lost on every
// load; pinned, the one set serves every later load.
static void keepRegexLibraryLoaded()
{
#if defined(_WIN32)
    // The loader pins a DLL for good when asked by an address inside it.
    const auto regexCode = reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&re2::RE2::FullMatchN));
    const DWORD lookUp = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE regexLibrary = nullptr, self = nullptr;
    if (!GetModuleHandleExW(lookUp, regexCode, &regexLibrary))
        return;
    // Linked in statically it shares our own file, which must stay free to unload.
    if (GetModuleHandleExW(lookUp, reinterpret_cast<LPCWSTR>(&keepRegexLibraryLoaded), &self) &&
        self == regexLibrary)
        return;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN, regexCode,
                       &regexLibrary);
#else
    Dl_info regexLibrary{}, self{};
    if (dladdr(reinterpret_cast<void*>(&re2::RE2::FullMatchN), &regexLibrary) == 0 || !regexLibrary.dli_fname)
        return;
    // Linked in statically it shares our own file, which must stay free to unload.
    if (dladdr(reinterpret_cast<void*>(&keepRegexLibraryLoaded), &self) != 0 &&
        self.dli_fbase == regexLibrary.dli_fbase)
        return;
    dlopen(regexLibrary.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
#endif
}

LetterToSoundEngine::LetterToSoundEngine()
{
    keepRegexLibraryLoaded();
    for (const auto& raw : letterToSoundRules) {
        CompiledRule rule;
        rule.match = raw.match;
        rule.phonemes = raw.phonemes;
        rule.hasLeft = raw.left[0] != '\0';
        rule.hasRight = raw.right[0] != '\0';
        // A left context must reach the match; a right one must start right behind it.
        if (rule.hasLeft) {
            rule.leftExpression = compileContext(raw.left, false, true);
            ++contextCount;
        }
        if (rule.hasRight) {
            rule.rightExpression = compileContext(raw.right, true, false);
            ++contextCount;
        }
        rules[static_cast<unsigned char>(raw.match[0])].push_back(std::move(rule));
    }
}

LetterToSoundEngine::~LetterToSoundEngine() = default;

std::pair<std::string, std::string> matchRule(const std::string& text, int32_t position,
                                              const CompiledRule& rule)
{
    if (position < 0 || static_cast<size_t>(position) >= text.size())
        return {};
    const size_t pos = static_cast<size_t>(position);
    if (text.size() - pos < rule.match.size())
        return {};
    if (text.compare(pos, rule.match.size(), rule.match) != 0)
        return {};
    if (rule.hasLeft && !re2::RE2::PartialMatch(re2::StringPiece(text.data(), pos), *rule.leftExpression))
        return {};
    if (rule.hasRight) {
        const size_t behind = pos + rule.match.size();
        if (!re2::RE2::PartialMatch(re2::StringPiece(text.data() + behind, text.size() - behind),
                                    *rule.rightExpression))
            return {};
    }
    return {rule.match, rule.phonemes};
}

std::vector<std::pair<std::string, std::string>> applyRules(const LetterToSoundEngine& engine,
                                                            const std::string& text)
{
    std::vector<std::pair<std::string, std::string>> found;
    size_t position = 1;
    while (position < text.size()) {
        const auto* list = engine.rulesFor(text[position]);
        if (!list)
            break;
        bool won = false;
        for (const auto& rule : *list) {
            auto hit = matchRule(text, static_cast<int32_t>(position), rule);
            // A rule's match is never empty, so an empty one means no match.
            if (!hit.first.empty()) {
                position += hit.first.size();
                found.push_back(std::move(hit));
                won = true;
                break;
            }
        }
        if (!won)
            ++position;
    }
    return found;
}

} // namespace Zelmor
