#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Host objects are only carried along here, never dereferenced, so their
// declarations are all this library needs.
namespace Steinberg {
class IProjectNode;
class IEditAnchor;
}

namespace Zelmor {

// One note of a track: the host's note as read by a sync, plus what the sync
// derived for it. Only start, end, pitch, lyric, phoneme and noteObject make
// up its identity; the rest may change without the sequence counting as changed.
struct SequenceNote {
    double start = 0.0;      // seconds on the project timeline
    double end = 0.0;
    int32_t pitch = 0;       // host pitch, untransposed
    std::string lyric;       // canonical "word" or "word[hint]"
    std::string phoneme;     // the hint: blank-separated phoneme tokens
    bool muted = false;
    int32_t transpose = 0;
    double soundStart = 0.0; // start raised to the part's start
    double soundEnd = 0.0;   // always equal to end
    Steinberg::IProjectNode* noteObject = nullptr; // compared by address
    Steinberg::IEditAnchor* partAnchor = nullptr;  // not part of identity
};

// Inline because the difference table calls it once per cell. Cheap numeric
// fields first; floats compare exactly, so +0 == -0 and NaN equals nothing.
inline bool equals(const SequenceNote& a, const SequenceNote& b)
{
    return a.start == b.start
        && a.end == b.end
        && a.pitch == b.pitch
        && a.lyric.size() == b.lyric.size() && a.lyric == b.lyric
        && a.phoneme.size() == b.phoneme.size() && a.phoneme == b.phoneme
        && a.noteObject == b.noteObject;
}

inline bool operator==(const SequenceNote& a, const SequenceNote& b) { return equals(a, b); }
inline bool operator!=(const SequenceNote& a, const SequenceNote& b) { return !equals(a, b); }

// seed ^ (v + golden ratio + (seed << 6) + (seed >> 2)), wrapping.
uint64_t hashCombine(uint64_t seed, uint64_t value);

uint64_t hashNote(const SequenceNote& note);

// Order-sensitive; 0 for the empty list. Valid within one process only.
uint64_t hashSequence(const std::vector<SequenceNote>& notes);

} // namespace Zelmor
