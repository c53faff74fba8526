#pragma once
// Letter-to-sound rules for English words that the pronouncing dictionary
// lacks: ordered lists of (left context, match, right context) -> phonemes.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace re2 {
class RE2;
}

namespace Zelmor {

// Contexts use the rule notation: '_' is written here as a blank (the word
// boundary) and '#', '%', '&', '+', '.', ':', '@', '^' are letter classes.
struct LetterToSoundRule {
    const char* left;
    const char* match;
    const char* right;
    const char* phonemes;
};

constexpr size_t letterToSoundRuleCount = 312;
// Grouped by the first letter of `match`, a to z then the apostrophe; within a
// group the order is the tie-break.
extern const LetterToSoundRule letterToSoundRules[letterToSoundRuleCount];

struct CompiledRule {
    bool hasLeft = false;
    std::unique_ptr<re2::RE2> leftExpression;
    std::string match;
    bool hasRight = false;
    std::unique_ptr<re2::RE2> rightExpression;
    std::string phonemes;
};

// The regular-expression source of a context, in the common subset of the
// ECMAScript and RE2 grammars: "^(" ... ")$" with the classes expanded.
std::string contextPattern(const std::string& context, bool atStart, bool atEnd);
std::unique_ptr<re2::RE2> compileContext(const std::string& context, bool atStart, bool atEnd);

class LetterToSoundEngine {
public:
    // Compiles every context; this is the cost of the first unknown word.
    LetterToSoundEngine();
    ~LetterToSoundEngine();
    LetterToSoundEngine(const LetterToSoundEngine&) = delete;
    LetterToSoundEngine& operator=(const LetterToSoundEngine&) = delete;

    // Rules for a character, or null when it has none (the blank, say).
    const std::vector<CompiledRule>* rulesFor(char c) const
    {
        const auto& list = rules[static_cast<unsigned char>(c)];
        return list.empty() ? nullptr : &list;
    }

    size_t compiledContextCount() const { return contextCount; }

private:
    std::vector<CompiledRule> rules[256];
    size_t contextCount = 0;
};

// (match, phonemes) of a rule that applies at `position`, both empty otherwise.
std::pair<std::string, std::string> matchRule(const std::string& text, int32_t position,
                                              const CompiledRule& rule);

// Scans a text of lower-case letters and apostrophes padded with one blank at
// each end; stops at the first character without rules.
std::vector<std::pair<std::string, std::string>> applyRules(const LetterToSoundEngine& engine,
                                                            const std::string& text);

} // namespace Zelmor
