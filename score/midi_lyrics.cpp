#include "score/midi_lyrics.h"

#include "score/text_encoding.h"

#include <cstring>

namespace Score {

namespace {

bool isBreak (char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool lineMark (const std::string& text) { return !text.empty () && (text[0] == '/' || text[0] == '\\'); }
bool header (const std::string& text) { return !text.empty () && text[0] == '@'; }
bool blank (const std::string& text) { return trimBlanks (text).empty (); }

std::size_t wordCount (const std::string& text)
{
    // Phonemes written in brackets after a word ("Quiet[k w ay]") are part of that word.
    std::size_t words = 0, depth = 0;
    for (std::size_t i = 0; i < text.size (); ++i)
    {
        depth += text[i] == '[' ? 1 : 0;
        words += depth == 0 && !isBreak (text[i]) && (i == 0 || isBreak (text[i - 1])) ? 1 : 0;
        depth -= text[i] == ']' && depth > 0 ? 1 : 0;
    }
    return words;
}

/** A text as a message quotes it: at most 40 bytes, cut between characters. */
std::string quoted (const std::string& text)
{
    std::string t = trimBlanks (text);
    if (t.size () > 40)
    {
        std::size_t cut = 40;
        while (cut > 0 && (static_cast<unsigned char> (t[cut]) & 0xC0) == 0x80)
            --cut;
        t = t.substr (0, cut) + "...";
    }
    return "\"" + t + "\"";
}

/** The parts of a text that several words or elided syllables make, joined by the undertie; empty when it is one. */
std::string elided (const std::string& core)
{
    std::string joined;
    std::size_t parts = 0;
    const std::size_t markLength = std::strlen (elisionMark);
    for (std::size_t i = 0; i < core.size ();)
    {
        std::size_t end = i;
        while (end < core.size () && !isBreak (core[end]) && core[end] != '_'
               && core.compare (end, markLength, elisionMark) != 0)
            ++end;
        if (end > i)
        {
            joined += (parts++ ? elisionMark : "") + core.substr (i, end - i);
            i = end;
        }
        else
            i += core.compare (i, markLength, elisionMark) == 0 ? markLength : 1;
    }
    return parts > 1 ? joined : std::string ();
}

/** Which of a track's texts are words, and which describe it: what both ways of reading share. */
struct Source
{
    const std::vector<TimedText>* texts = nullptr;
    bool karaoke = false;
    std::size_t first = 0;        ///< texts before it describe the track
    std::size_t description = 0;  ///< one more text that does: an opening sentence; `texts->size ()` for none
};

Source wordsOf (const std::vector<TimedText>& texts, std::vector<std::string>& notices)
{
    Source s;
    s.texts = &texts;
    s.description = texts.size ();
    for (std::size_t i = 0; i < texts.size () && !s.karaoke; ++i)
        if (lineMark (texts[i].text))
        {
            s.karaoke = true;
            s.first = i;
        }
    std::string described;
    std::size_t count = 0;
    for (std::size_t i = 0; i < s.first; ++i)
        if (!header (texts[i].text) && !blank (texts[i].text) && count++ == 0)
            described = quoted (texts[i].text);
    // A sentence that opens the words, where no other text holds as many, tells what the track is.
    std::size_t opening = texts.size (), long_ = 0;
    for (std::size_t i = s.first; i < texts.size (); ++i)
    {
        const std::string& t = texts[i].text;
        if (header (t) || blank (t) || lineMark (t))
        {
            if (lineMark (t) && opening == texts.size ())
                opening = texts.size () + 1;  // a line has begun: no opening sentence after it
            continue;
        }
        if (opening == texts.size ())
            opening = i;
        long_ += wordCount (t) >= 3 ? 1 : 0;
    }
    if (opening < texts.size () && long_ == 1 && wordCount (texts[opening].text) >= 3)
    {
        s.description = opening;
        if (count++ == 0)
            described = quoted (texts[opening].text);
    }
    if (count > 0)
        notices.push_back ("text " + described + (count > 1 ? " and " + std::to_string (count - 1) + " more" : "")
                           + " taken for a description of the track, not sung");
    return s;
}

bool describes (const Source& s, std::size_t i) { return i < s.first || i == s.description; }

void readWords (const Source& source, WordsConvention convention, std::vector<TimedSyllable>& out)
{
    const auto& texts = *source.texts;
    std::vector<bool> begins;  // whether each of `out` begins a word
    bool nextBegins = true;
    const bool blanksEnd = convention != WordsConvention::Hyphenated;
    for (std::size_t i = 0; i < texts.size (); ++i)
    {
        std::string text = texts[i].text;
        if (header (text) || describes (source, i))
            continue;
        const bool marked = source.karaoke && lineMark (text);
        if (source.karaoke)
            text.erase (0, text.find_first_not_of ("/\\"));
        const std::string trimmed = trimBlanks (text);
        const std::uint64_t tick = texts[i].tick;
        if (convention == WordsConvention::AsWritten || hasHint (trimmed))
        {
            if (!trimmed.empty ())
            {
                out.push_back ({tick, {Syllable::AsWritten, trimmed}});
                begins.push_back (true);
            }
            nextBegins = true;
            continue;
        }
        if (trimmed == "-" || trimmed == "_")
        {
            out.push_back ({tick, {Syllable::Held, {}}});
            begins.push_back (false);
            continue;
        }
        // Hyphens at the edges join syllables; underscores there draw an extension line.
        std::string core = trimmed;
        const bool goesOn = !core.empty () && core.back () == '-';
        const bool joins = !core.empty () && core[0] == '-';
        while (!core.empty () && (core.back () == '-' || core.back () == '_'))
            core.pop_back ();
        core.erase (0, core.find_first_not_of ("-_"));
        bool beginsHere = nextBegins;
        if (blanksEnd)
        {
            const bool leads = marked || text.empty () || isBreak (text[0]);
            beginsHere = (beginsHere || leads) && !joins;
            nextBegins = !text.empty () && isBreak (text.back ()) && !goesOn;
        }
        else
        {
            beginsHere = beginsHere && !joins;
            nextBegins = !goesOn;
        }
        if (core.empty ())
        {
            nextBegins = nextBegins || beginsHere;  // a line mark or a blank alone
            continue;
        }
        const std::string parts = elided (core);
        if (!parts.empty ())
        {
            out.push_back ({tick, {Syllable::Elided, parts}});
            begins.push_back (true);
            nextBegins = true;
            continue;
        }
        out.push_back ({tick, {Syllable::Single, core}});
        begins.push_back (beginsHere);
    }

    // A syllable ends its word when the next one begins another.
    for (std::size_t i = 0; i < out.size (); ++i)
    {
        Syllable& s = out[i].syllable;
        if (s.kind != Syllable::Single)
            continue;
        std::size_t next = i + 1;
        while (next < out.size () && out[next].syllable.kind == Syllable::Held)
            ++next;
        s.kind = syllableKind (begins[i], next == out.size () || begins[next]);
    }
}

WordsConvention conventionOf (const Source& source)
{
    if (source.karaoke)
        return WordsConvention::Karaoke;
    // Syllables of the blank-ended kind carry no blank inside a word, so a share of a
    // third leaves room for words of three syllables; hyphenated texts carry one rarely.
    std::size_t unjoined = 0, edged = 0;
    const auto& texts = *source.texts;
    for (std::size_t i = 0; i < texts.size (); ++i)
    {
        const std::string& t = texts[i].text;
        const std::string trimmed = trimBlanks (t);
        if (header (t) || trimmed.empty () || describes (source, i) || trimmed.back () == '-')
            continue;
        ++unjoined;
        // Line ends don't count: notation programs end their lines with them too.
        auto blankChar = [] (char c) { return c == ' ' || c == '\t'; };
        edged += blankChar (t[0]) || blankChar (t.back ()) ? 1 : 0;
    }
    return edged > 0 && edged * 3 >= unjoined ? WordsConvention::BlankEnded : WordsConvention::Hyphenated;
}

std::size_t commentary (const std::vector<TimedText>& texts, std::string& first)
{
    std::size_t count = 0;
    for (const auto& t : texts)
        if (!header (t.text) && !blank (t.text) && count++ == 0)
            first = quoted (t.text);
    return count;
}

} // namespace

std::string describe (WordsConvention convention)
{
    switch (convention)
    {
    case WordsConvention::None: return "no words";
    case WordsConvention::Karaoke: return "read as karaoke (\"/\" and \"\\\" begin lines, a blank ends a word)";
    case WordsConvention::BlankEnded:
        return "read as blank-ended (a blank or line end ends a word, a text without one goes on into the next)";
    case WordsConvention::Hyphenated: return "read as hyphenated (each text a word, unless a hyphen joins syllables)";
    case WordsConvention::AsWritten: return "each typed as written (--raw-lyrics)";
    }
    return {};
}

bool hasLyricWords (const TrackTexts& track)
{
    for (const auto& t : track.lyrics)
        if (!header (t.text) && !blank (t.text))
            return true;
    return false;
}

TrackWords readTrackWords (const TrackTexts& track, bool lyricsInFile, bool raw)
{
    TrackWords out;
    const bool lyricWords = hasLyricWords (track);
    bool karaokeTexts = false;
    for (const auto& t : track.texts)
        karaokeTexts = karaokeTexts || lineMark (t.text);

    const std::vector<TimedText>* words = nullptr;
    if (raw)
        words = lyricsInFile ? &track.lyrics : &track.texts;
    else if (lyricWords)
        words = &track.lyrics;
    else if (karaokeTexts && !lyricsInFile)
        words = &track.texts;
    out.fromLyricEvents = words == &track.lyrics;

    if (words != &track.texts)
    {
        std::string first;
        if (const std::size_t count = commentary (track.texts, first))
        {
            if (karaokeTexts)
                out.notices.push_back ("its karaoke text events are left out: the file's lyric events carry its words");
            else
                out.notices.push_back (std::to_string (count) + " text event(s) taken for commentary, not sung: "
                                       + first + (count > 1 ? " and more" : ""));
        }
    }
    if (!words)
        return out;
    const Source source = wordsOf (*words, out.notices);
    out.convention = raw ? WordsConvention::AsWritten : conventionOf (source);
    readWords (source, out.convention, out.syllables);
    if (out.syllables.empty ())
        out.convention = WordsConvention::None;
    return out;
}

} // namespace Score
