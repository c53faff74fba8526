#include "score/hold_places.h"

#include "phoneme/dictionary_holder.h"
#include "phoneme/hold_marks.h"
#include "phoneme/lyric_converter.h"
#include "phoneme/phoneme_inventory.h"

#include <algorithm>

namespace Score {

namespace {

using Elements = std::vector<std::string>;

bool isHold (const std::string& element)
{
    return !element.empty () && element[0] == '-';
}

constexpr std::size_t none = static_cast<std::size_t> (-1);

/**
 * The one syllable a marked text holds once more than the text, or none.
 * Most marks change one syllable's elements only, which the converter tells
 * for every place from one conversion: those are sung again alone, from the
 * syllable before them to the next that they leave as it was.
 */
class Trials
{
public:
    Trials (const Elements& elements, const std::vector<SungSyllable>& base) : elements_ (elements), base_ (base)
    {
        const std::size_t n = elements.size ();
        groupOf_.resize (n);
        nextStart_.assign (n + 1, n);
        for (std::size_t e = 0, g = 0; e < n; ++e)
        {
            if (!isHold (elements[e]) && e > 0)
                ++g;
            groupOf_[e] = g;
            if (!isHold (elements[e]))
                groupStart_.push_back (e);
        }
        for (std::size_t e = n; e-- > 0;)
            nextStart_[e] = isHold (elements[e]) ? nextStart_[e + 1] : e;
    }

    std::size_t heldBy (const Zelmor::MarkEffect& effect, const std::string& text, std::size_t at, const char* mark) const
    {
        if (effect.kind == Zelmor::MarkEffect::Same)
            return none;
        if (effect.kind == Zelmor::MarkEffect::Unknown)
        {
            std::string tried = text;
            tried.insert (at, mark);
            return heldIn (convertText (tried));
        }
        const std::size_t n = elements_.size ();
        const auto begin = elements_.begin ();
        const std::size_t a = effect.from > 0 ? groupStart_[groupOf_[effect.from - 1]] : 0;
        const std::size_t b = nextStart_[effect.to];
        Elements region (begin + static_cast<std::ptrdiff_t> (a), begin + static_cast<std::ptrdiff_t> (effect.from));
        region.insert (region.end (), effect.elements.begin (), effect.elements.end ());
        region.insert (region.end (), begin + static_cast<std::ptrdiff_t> (effect.to), begin + static_cast<std::ptrdiff_t> (b));
        if (a > 0 && !region.empty () && isHold (region.front ()))
        {
            // A hold at the front would join the syllable before: sing the whole text.
            Elements whole (begin, begin + static_cast<std::ptrdiff_t> (effect.from));
            whole.insert (whole.end (), effect.elements.begin (), effect.elements.end ());
            whole.insert (whole.end (), begin + static_cast<std::ptrdiff_t> (effect.to), elements_.end ());
            return heldIn (whole);
        }
        std::vector<SungSyllable> now;
        if (!sungSyllables (region, now))
            return none;
        const std::size_t first = groupOf_[a];
        const std::size_t last = b < n ? groupOf_[b] : base_.size ();
        return now.size () == last - first ? heldOver (now, first) : none;
    }

private:
    std::size_t heldIn (const Elements& elements) const
    {
        std::vector<SungSyllable> now;
        if (!sungSyllables (elements, now) || now.size () != base_.size ())
            return none;
        return heldOver (now, 0);
    }

    /** `now` against the base's syllables from `first` on. */
    std::size_t heldOver (const std::vector<SungSyllable>& now, std::size_t first) const
    {
        std::size_t held = none;
        for (std::size_t i = 0; i < now.size (); ++i)
        {
            const SungSyllable& was = base_[first + i];
            const int gained = now[i].holds - was.holds;
            if (now[i].sound != was.sound || gained < 0 || (gained > 0 && now[i].holdsConsonant))
                return none;
            if (gained == 0)
                continue;
            if (gained > 1 || held != none)
                return none;
            held = first + i;
        }
        return held;
    }

    const Elements& elements_;
    const std::vector<SungSyllable>& base_;
    std::vector<std::size_t> groupOf_, groupStart_, nextStart_;
};

} // namespace

bool sungSyllables (const Elements& elements, std::vector<SungSyllable>& out)
{
    out.clear ();
    bool endsOnNucleus = false;
    for (const auto& e : elements)
    {
        auto parts = soundTokens (e);
        if (e.empty () || e[0] != '-')
        {
            endsOnNucleus = !parts.empty () && Zelmor::findNucleus (parts) + 1 == parts.size ();
            out.push_back ({e, 0, false});
            continue;
        }
        if (out.empty ())
            return false;
        SungSyllable& s = out.back ();
        ++s.holds;
        if (parts.size () <= 1)
            s.holdsConsonant = s.holdsConsonant || !endsOnNucleus;
        for (std::size_t i = 1; i < parts.size (); ++i, endsOnNucleus = false)
            s.sound += " " + parts[i];
    }
    return true;
}

bool gainedHolds (const Elements& elements, const std::vector<SungSyllable>& base, std::vector<int>& gained)
{
    std::vector<SungSyllable> now;
    if (!sungSyllables (elements, now) || now.size () != base.size ())
        return false;
    gained.assign (base.size (), 0);
    for (std::size_t j = 0; j < base.size (); ++j)
    {
        gained[j] = now[j].holds - base[j].holds;
        if (now[j].sound != base[j].sound || gained[j] < 0 || (gained[j] > 0 && now[j].holdsConsonant))
            return false;
    }
    return true;
}

std::vector<std::string> soundTokens (const std::string& element)
{
    // The blanks of the C locale, as a stream would split at them, without a stream's cost.
    auto blank = [] (char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    std::vector<std::string> out;
    for (std::size_t i = 0; i < element.size ();)
    {
        if (blank (element[i]))
        {
            ++i;
            continue;
        }
        const std::size_t start = i;
        while (i < element.size () && !blank (element[i]))
            ++i;
        out.push_back (element.substr (start, i - start));
    }
    return out;
}

Elements convertText (const std::string& text, Zelmor::LyricLayout* layout)
{
    const auto* dictionary = Zelmor::dictionaryHolderMap ();
    if (!dictionary)
        return {};
    try
    {
        return layout ? Zelmor::convertLyric (text, *dictionary, *layout) : Zelmor::convertLyric (text, *dictionary);
    }
    catch (const std::exception&)
    {
        return {};  // only malformed UTF-8 throws, and the readers hand over none
    }
}

std::vector<HoldPlace> holdPlaces (const std::string& text, const Zelmor::LyricLayout& layout,
                                   const std::vector<std::string>& elements, const std::vector<SungSyllable>& sung,
                                   const std::vector<std::size_t>& target, bool withLongMarks)
{
    std::vector<HoldPlace> reach (sung.size ());
    const auto* dictionary = Zelmor::dictionaryHolderMap ();
    if (!dictionary)
        return reach;
    const Trials trials (elements, sung);
    auto distance = [] (std::size_t a, std::size_t b) { return a > b ? a - b : b - a; };
    // Every place for each mark, in the text's order; a hyphen holds a syllable
    // wherever one can, so long-vowel marks are only tried for the syllables left.
    auto tryAll = [&] (const char* mark, char32_t code) {
        const auto effects = Zelmor::markEffects (layout, *dictionary, code);
        for (std::size_t at = 0, p = 0; at <= text.size (); ++at)
        {
            if (at < text.size () && (static_cast<unsigned char> (text[at]) & 0xC0) == 0x80)
                continue;  // inside a character
            const std::size_t j = trials.heldBy (effects[p++], text, at, mark);
            if (j == none)
                continue;
            HoldPlace& place = reach[j];
            if (!place.mark || (place.mark == longMark && mark == hyphen)
                || (place.mark == mark && distance (at, target[j]) <= distance (place.at, target[j])))
                place = {at, mark};
        }
    };
    tryAll (hyphen, U'-');
    if (withLongMarks && std::any_of (reach.begin (), reach.end (), [] (const HoldPlace& p) { return !p.mark; }))
        tryAll (longMark, Zelmor::longVowelMark);
    return reach;
}

} // namespace Score
