#include "sequence/sequence_note.h"

#include <cstring>
#include <functional>

namespace Zelmor {

namespace {

// Both zeroes must hash alike because they compare equal; every other value
// (NaN included) hashes by its bit pattern.
uint64_t hashDouble(double value)
{
    if (value == 0.0)
        return 0;
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

} // namespace

uint64_t hashCombine(uint64_t seed, uint64_t value)
{
    return seed ^ (value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2));
}

uint64_t hashNote(const SequenceNote& note)
{
    uint64_t seed = 0;
    seed = hashCombine(seed, hashDouble(note.start));
    seed = hashCombine(seed, hashDouble(note.end));
    seed = hashCombine(seed, static_cast<uint64_t>(static_cast<int64_t>(note.pitch)));
    seed = hashCombine(seed, std::hash<std::string>{}(note.lyric));
    seed = hashCombine(seed, std::hash<std::string>{}(note.phoneme));
    seed = hashCombine(seed, std::hash<Steinberg::IProjectNode*>{}(note.noteObject));
    return seed;
}

uint64_t hashSequence(const std::vector<SequenceNote>& notes)
{
    uint64_t seed = 0;
    for (const SequenceNote& note : notes)
        seed = hashCombine(seed, hashNote(note));
    return seed;
}

} // namespace Zelmor
