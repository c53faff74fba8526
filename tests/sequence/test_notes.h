#pragma once

#include "sequence/sequence_note.h"

// Stand-ins for host note objects: distinct addresses, never dereferenced.
inline Steinberg::IProjectNode* fakeNode(int k)
{
    static char slots[64];
    return reinterpret_cast<Steinberg::IProjectNode*>(&slots[k % 64]);
}

inline Zelmor::SequenceNote makeNote(double start, const std::string& lyric, int node = 0)
{
    Zelmor::SequenceNote n;
    n.start = start;
    n.end = start + 0.5;
    n.soundStart = start;
    n.soundEnd = n.end;
    n.pitch = 60;
    n.lyric = lyric;
    n.noteObject = fakeNode(node);
    return n;
}
