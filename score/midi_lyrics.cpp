#include "score/midi_lyrics.h"

#include "score/text_encoding.h"

namespace Score {

namespace {

bool lineMark (const std::string& text) { return !text.empty () && (text[0] == '/' || text[0] == '\\'); }

} // namespace

std::vector<TimedSyllable> readLyricTexts (const std::vector<TimedText>& texts, bool textEvents, bool raw,
                                           std::vector<std::string>& notices)
{
    bool karaoke = textEvents;
    for (const auto& t : texts)
        karaoke = karaoke || lineMark (t.text);
    std::size_t firstLine = 0;
    while (karaoke && firstLine < texts.size () && !lineMark (texts[firstLine].text))
        ++firstLine;
    if (firstLine == texts.size ())
        firstLine = 0;  // no line marks at all: every text is a word

    std::vector<TimedSyllable> out;
    std::vector<bool> begins;  // whether each of `out` begins a word
    bool nextBegins = true;
    for (std::size_t i = 0; i < texts.size (); ++i)
    {
        std::string text = texts[i].text;
        if (karaoke && !text.empty () && text[0] == '@')
            continue;
        if (i < firstLine)
        {
            if (!trimBlanks (text).empty ())
                notices.push_back ("text \"" + trimBlanks (text) + "\" before the first line of words is taken for "
                                   "a description of the track, not sung");
            continue;
        }
        const bool marked = karaoke && lineMark (text);
        if (karaoke)
            text.erase (0, text.find_first_not_of ("/\\"));
        const std::string trimmed = trimBlanks (text);
        if (raw || hasHint (trimmed))
        {
            if (!trimmed.empty ())
            {
                out.push_back ({texts[i].tick, {Syllable::AsWritten, trimmed}});
                begins.push_back (true);
            }
            nextBegins = true;
            continue;
        }
        if (!karaoke && (trimmed == "-" || trimmed == "_"))
        {
            out.push_back ({texts[i].tick, {Syllable::Held, {}}});
            begins.push_back (false);
            continue;
        }
        bool beginsHere = nextBegins;
        if (karaoke)
        {
            beginsHere = beginsHere || marked || (!text.empty () && text[0] == ' ');
            nextBegins = !text.empty () && text.back () == ' ';
        }
        else
        {
            // Some programs hyphenate the syllable that goes on, some the one that follows.
            beginsHere = beginsHere && (trimmed.empty () || trimmed[0] != '-');
            nextBegins = trimmed.empty () || trimmed.back () != '-';
        }
        std::string syllable = trimmed;
        while (!syllable.empty () && syllable.back () == '-')
            syllable.pop_back ();
        syllable.erase (0, syllable.find_first_not_of ('-'));
        if (syllable.empty ())
        {
            nextBegins = nextBegins || beginsHere;  // a line mark or a blank alone
            continue;
        }
        out.push_back ({texts[i].tick, {Syllable::Single, syllable}});
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
    return out;
}

} // namespace Score
