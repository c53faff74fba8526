#include "sync/note_attributes.h"

#include "sync/host_ref.h"
#include "sync/project_walk.h"
#include "sync/text_conversion.h"

using namespace Steinberg;

namespace Zelmor {
namespace {

constexpr int32 kAttributeFlags = 1;

bool readSeenMark (IProjectNode* node)
{
    if (node->hasAttribute (keys::seen) != kResultOk)
        return false;
    FVariant value;
    if (node->getAttribute (keys::seen, &value) != kResultOk)
        return false;
    return (value.getType () & FVariant::kInteger) && value.getInt () != 0;
}

void setSeenMark (IProjectNode* node)
{
    const FVariant one (static_cast<int64> (1));
    node->setAttribute (keys::seen, &one, kAttributeFlags);
}

} // namespace

NoteTextState readNoteText (IProjectNode* node, INoteText* noteText, bool markSeen)
{
    NoteTextState state;
    state.seenMark = readSeenMark (node);
    if (markSeen && !state.seenMark)
        setSeenMark (node);

    {
        FVariant lyrics;
        if (noteText->getValue (keys::lyrics, &lyrics) == kResultOk)
            state.lyricText = utf16ToUtf8 (lyrics.getString16 ());
    }
    {
        // Read as the host expects it to be read; the note's phonemes come from the lyric's hint alone.
        FVariant phoneme;
        noteText->getValue (keys::phoneme, &phoneme);
    }
    if (node->hasAttribute (keys::storedLyric) == kResultOk)
    {
        FVariant stored;
        if (node->getAttribute (keys::storedLyric, &stored) == kResultOk
            && (stored.getType () & FVariant::kString16) && stored.getString16 ())
        {
            state.storedLyric = utf16ToUtf8 (stored.getString16 ());
            state.hasStoredLyric = true;
        }
    }

    state.current = splitLyricText (state.lyricText);
    // After a write-back both texts are the same: split once (the idle pass's commonest case).
    state.stored = state.storedLyric == state.lyricText ? state.current : splitLyricText (state.storedLyric);
    state.wordChanged = state.current.word != state.stored.word;
    state.hintChanged = state.current.hint != state.stored.hint;
    if (!state.hasStoredLyric)
    {
        // Never written by us: any word at all is news.
        state.wordChanged = !state.current.word.empty ();
        state.hintChanged = state.hintChanged && state.wordChanged;
    }
    return state;
}

void writeNoteText (const SequenceNote& note, IProjectEditContext* context)
{
    IProjectNode* node = note.noteObject;
    if (!node)
        return;
    auto event = queryHost<INoteEvent> (node);
    auto text = queryHost<INoteText> (node);
    if (!text)
        return;
    auto anchor = queryHost<IEditAnchor> (text->resolveAnchor (note.partAnchor));

    // The buffers are ours and live for the calls only: no owner flag on the variants.
    const std::u16string lyric = utf8ToUtf16 (note.lyric);
    const FVariant lyricValue (reinterpret_cast<const char16*> (lyric.c_str ()));
    text->setValue (keys::lyrics, &lyricValue, anchor.get (), context);
    node->setAttribute (keys::storedLyric, &lyricValue, kAttributeFlags);

    const std::u16string phoneme = utf8ToUtf16 (note.phoneme);
    const FVariant phonemeValue (reinterpret_cast<const char16*> (phoneme.c_str ()));
    text->setValue (keys::phoneme, &phonemeValue, anchor.get (), context);

    setSeenMark (node);
}

void clearMarksOfNote (IProjectNode* node)
{
    if (node->hasAttribute (keys::seen) != kResultOk)
        return;
    node->removeAttribute (keys::seen);
    if (node->hasAttribute (keys::storedLyric) == kResultOk)
        node->removeAttribute (keys::storedLyric);
}

} // namespace Zelmor
