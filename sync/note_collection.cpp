#include "sync/note_collection.h"

#include "sync/lyric_distribution.h"
#include "sync/note_attributes.h"
#include "sync/project_walk.h"

#include <algorithm>
#include <cmath>

using namespace Steinberg;

namespace Zelmor {
namespace {

constexpr int32 kMusicalTime = 0;
constexpr int32 kLinearTime = 1;

/** What is read once per part. The part's content start and mute state are asked anew for every event. */
struct PartFrame
{
    double start = 0.0;
    double end = 0.0;
    int32 transpose = 0;
    IEditAnchor* anchor = nullptr;
};

/** An event's position moved from the part's content onto the project's time line. Positions in a
    musical track shift by a musical distance; that distance is converted as one value. */
bool placeOnTimeline (int32 domain, ITimeContext* time, double partStart, double contentStart, double& start,
                      double& end)
{
    const double shift = partStart - contentStart;
    if (domain == kLinearTime)
    {
        start += shift;
        end += shift;
        return true;
    }
    if (!time)
        return false;
    const double musicalShift = time->linearToMusical (shift);
    start = time->musicalToLinear (time->linearToMusical (start) + musicalShift);
    end = time->musicalToLinear (time->linearToMusical (end) + musicalShift);
    return true;
}

/** a.start < b.start, with a host's NaN start put last: a plain < is no ordering with NaNs in the list,
    and the sort would be free to run off the list. */
bool startsEarlier (const SequenceNote& a, const SequenceNote& b)
{
    if (std::isnan (a.start))
        return false;
    if (std::isnan (b.start))
        return true;
    return a.start < b.start;
}

} // namespace

TrackNotes collectTrackNotes (IHostProject* project, IProjectNode* root, ISvsPlugin* plugin, bool markSeen)
{
    TrackNotes result;
    result.notes.reserve (256);
    auto track = findTrackOfPlugin (root, plugin);
    if (!track)
        return result;
    auto trackNode = queryHost<ITrackNode> (track.get ());
    if (!trackNode)
        return result;

    PartList parts;
    collectMidiParts (track.get (), parts);
    // Handed over, never queried: the track's context is its time context.
    result.timeContext = adopt (project->getContext (track.get ()));
    auto* time = static_cast<ITimeContext*> (result.timeContext.get ());

    double lastPartEnd = 0.0;
    bool partsOverlap = false;
    for (IProjectNode* part : parts)
    {
        if (!part)
            continue;
        PartFrame frame;
        if (auto midiPart = queryHost<IMidiPart> (part))
            frame.transpose = midiPart->getTranspose ();
        if (auto anchorHolder = adopt (project->getContext (part)))
        {
            auto anchor = queryHost<IEditAnchor> (anchorHolder.get ());
            frame.anchor = anchor.get ();
            if (anchor)
                result.anchors.push_back (anchor);
        }
        auto events = adopt (part->getChildren ());
        if (!events)
            continue;
        frame.start = part->getStart (time);
        frame.end = part->getEnd (time);

        if (lastPartEnd > frame.start)
            partsOverlap = true;
        if (!partsOverlap)
            lastPartEnd = frame.end;

        DistributionState distribution;
        while (!(events->isDone () & 1))
        {
            IProjectNode* event = events->next ();
            if (!event)
                continue;
            auto noteEvent = queryHost<INoteEvent> (event);
            auto noteText = queryHost<INoteText> (event);
            if (!noteText)
                continue;
            const NoteTextState text = readNoteText (event, noteText.get (), markSeen);
            const LyricParts lyric = distribute (distribution, text);

            const int32 domain = trackNode->getTimeDomain ();
            if (domain != kMusicalTime && domain != kLinearTime)
                continue;
            double start = event->getStart (time);
            double end = event->getEnd (time);
            const double contentStart = part->getContentStart (time);
            if (!placeOnTimeline (domain, time, frame.start, contentStart, start, end))
                continue;

            SequenceNote note;
            note.start = start;
            note.end = end;
            note.pitch = noteEvent ? noteEvent->getPitch () : 0;
            note.lyric = composeLyricText (lyric.word, lyric.hint);
            note.phoneme = lyric.hint;
            // A start that is not at or behind the part's start (NaN included) is muted, not moved.
            note.muted = (part->isMuted () & 1) || (event->isMuted () & 1) || !(start >= frame.start)
                         || start >= frame.end;
            note.transpose = frame.transpose;
            note.soundStart = std::max (start, frame.start);
            note.soundEnd = end;
            note.noteObject = event;
            note.partAnchor = frame.anchor;
            result.notes.push_back (std::move (note));
        }
    }
    if (partsOverlap)
        std::sort (result.notes.begin (), result.notes.end (), startsEarlier);
    return result;
}

} // namespace Zelmor
