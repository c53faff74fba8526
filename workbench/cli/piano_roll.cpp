#include "workbench/cli/piano_roll.h"

#include "workbench/cli/file_output.h"
#include "workbench/cli/host_notes.h"
#include "workbench/cli/report.h"
#include "workbench/cli/song_time.h"
#include "workbench/sim/note_rows.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

constexpr int margin = 64, header = 24, marks = 14, ruler = 18, gapBelow = 8, rowHeight = 14;
constexpr int lyricLines = 2, lyricLine = 14, lyricTop = 5;  // the lane of words below the keys
constexpr double pixelsPerSecond = 100.0, pageSeconds = 30.0, lastPageSeconds = 36.0;
constexpr double longestRoll = 7200.0;  // a time line of absurd length still gives a bounded number of pages

const juce::Colour dropped (0xffd0202a), untyped (0xffc06000);

/** A word under its notes: from its first note's start to the end of the last note it holds. */
struct WordSpan
{
    std::string word;
    double start = 0.0, end = 0.0;
};

struct Panel
{
    std::vector<Sim::NoteRow> rows;
    std::vector<WordSpan> words;
    int low = 60, high = 60;  // MIDI notes, one spare on each side
    int rollHeight () const { return (high - low + 1) * rowHeight; }
    int lyricHeight () const { return words.empty () ? 0 : lyricTop + lyricLines * lyricLine; }
    int height () const { return header + marks + ruler + rollHeight () + lyricHeight () + gapBelow; }
};

int noteOf (float cents) { return static_cast<int> (std::lround (69.0 + static_cast<double> (cents) / 100.0)); }

bool finite (const Sim::NoteRow& r) { return std::isfinite (r.start) && std::isfinite (r.end); }

/**
 * The agent writes a word on the first note it sings and `[hint]` on each note
 * that goes on with it; a rest or a note with no text ends the word.
 */
std::vector<WordSpan> wordSpans (const std::vector<Sim::NoteRow>& rows, const std::vector<std::string>& lyrics)
{
    std::vector<WordSpan> out;
    bool open = false;
    for (std::size_t i = 0; i < rows.size (); ++i)
    {
        const auto& r = rows[i];
        if (r.rest || i >= lyrics.size () || lyrics[i].empty () || !finite (r))
        {
            open = false;
            continue;
        }
        std::string word = wordOf (lyrics[i]);
        if (!word.empty ())
        {
            out.push_back ({std::move (word), r.start, r.end});
            open = true;
        }
        else if (open)
            out.back ().end = std::max (out.back ().end, r.end);
    }
    return out;
}

/** The panels, and where the last record ends. */
std::vector<Panel> panels (const Outcome& outcome, double& end)
{
    std::vector<Panel> out;
    end = 0.0;
    for (const auto& synth : outcome.synthesisers)
    {
        Panel p;
        p.rows = Sim::rowsOf (synth.notes);
        p.words = wordSpans (p.rows, synth.lyrics);
        int lo = 1000, hi = -1000;
        for (const auto& r : p.rows)
        {
            if (!finite (r))
                continue;
            end = std::max (end, r.end);
            if (r.rest)
                continue;
            lo = std::min (lo, noteOf (r.pitchCents));
            hi = std::max (hi, noteOf (r.pitchCents));
        }
        if (lo > hi)
            lo = hi = 60;  // only rests, or nothing: a lone row around middle C
        p.low = std::clamp (lo, 0, 127) - 1;
        p.high = std::clamp (hi, 0, 127) + 1;
        out.push_back (std::move (p));
    }
    end = std::min (end, longestRoll);
    return out;
}

/** Where each bar begins, in seconds, with its number and meter. */
std::vector<std::pair<double, Bar>> barTimes (const Outcome& outcome, double end)
{
    std::vector<std::pair<double, Bar>> out;
    if (outcome.meters.empty ())
        return out;
    for (const Bar& b : barsUpTo (outcome.meters, beatsAt (outcome.tempi, end)))
        out.push_back ({secondsAt (outcome.tempi, b.beat), b});
    return out;
}

/** The stretches of the pages: at most `pageSeconds` each, ending at a bar line where one lies in the later half. */
std::vector<std::pair<double, double>> stretches (const Outcome& outcome, double end)
{
    const auto bars = barTimes (outcome, end);
    std::vector<std::pair<double, double>> out;
    double from = 0.0;
    while (end - from > lastPageSeconds)
    {
        double to = from + pageSeconds;
        for (const auto& [at, bar] : bars)
            if (at > from + pageSeconds / 2.0 && at <= from + pageSeconds + 1e-9)
                to = at;
        out.push_back ({from, to});
        from = to;
    }
    out.push_back ({from, end});
    return out;
}

int pitchClass (int note) { return ((note % 12) + 12) % 12; }

bool isBlackKey (int note)
{
    const int pc = pitchClass (note);
    return pc == 1 || pc == 3 || pc == 6 || pc == 8 || pc == 10;
}

juce::String clockText (double seconds)
{
    const int s = static_cast<int> (std::lround (seconds));
    return juce::String (s / 60) + ":" + juce::String (s % 60).paddedLeft ('0', 2);
}

juce::String text (const std::string& utf8) { return juce::String::fromUTF8 (utf8.c_str ()); }

/**
 * The toolkit draws nothing for a glyph that its font lacks and falls back to
 * no other font, so text with kana or kanji takes a Japanese font where one is
 * installed (`fonts-vlgothic`).
 */
juce::Font fontFor (const juce::String& s, const juce::Font& base)
{
    static const bool installed = juce::Font::findAllTypefaceNames ().contains ("VL PGothic");
    if (!installed)
        return base;
    for (auto p = s.getCharPointer (); !p.isEmpty ();)
        if (p.getAndAdvance () >= 0x2E80)
            return juce::Font ("VL PGothic", base.getHeight (), base.getStyleFlags ());
    return base;
}

/** Everything one page draws with. */
struct PageView
{
    const Outcome& outcome;
    const std::vector<Panel>& panels;
    const std::vector<Notice>& notices;
    const std::vector<std::pair<double, Bar>>& bars;
    RollPage page;
    juce::String title;

    int timeWidth () const { return page.width - 2 * margin; }
    float x (double seconds) const { return static_cast<float> (margin + (seconds - page.start) * pixelsPerSecond); }
    bool shows (double from, double to) const { return to > page.start && from < page.end; }
};

/** Tempo and time signature where the page begins and wherever they change on it. */
void drawMarks (juce::Graphics& g, const PageView& v, int top)
{
    struct Mark
    {
        double at;
        juce::String label;
        juce::Colour colour;
    };
    std::vector<Mark> all;
    const auto& tempi = v.outcome.tempi;
    for (std::size_t i = 0; i < tempi.size (); ++i)
    {
        const double at = secondsAt (tempi, tempi[i].beat);
        const bool inForce = at <= v.page.start && (i + 1 == tempi.size () || secondsAt (tempi, tempi[i + 1].beat) > v.page.start);
        if (inForce || (at > v.page.start && at < v.page.end))
            all.push_back ({std::max (at, v.page.start), juce::String (tempi[i].bpm, 0) + " bpm", juce::Colour (0xffa05a00)});
    }
    for (std::size_t i = 0; i < v.bars.size (); ++i)
    {
        const auto& [at, bar] = v.bars[i];
        const bool changes = i == 0 || bar.numerator != v.bars[i - 1].second.numerator
                             || bar.denominator != v.bars[i - 1].second.denominator;
        const bool first = at <= v.page.start + 1e-9 && (i + 1 == v.bars.size () || v.bars[i + 1].first > v.page.start + 1e-9);
        if (first || (changes && at > v.page.start && at < v.page.end))
            all.push_back ({std::max (at, v.page.start), juce::String (bar.numerator) + "/" + juce::String (bar.denominator),
                            juce::Colour (0xff304a80)});
    }
    std::stable_sort (all.begin (), all.end (), [] (const Mark& a, const Mark& b) { return a.at < b.at; });
    const juce::Font font (10.0f, juce::Font::bold);
    g.setFont (font);
    float free = 0.0f;
    for (const auto& m : all)
    {
        const float at = v.x (m.at);
        g.setColour (m.colour);
        g.drawVerticalLine (static_cast<int> (at), static_cast<float> (top + 2), static_cast<float> (top + marks));
        const float left = std::max (at + 3.0f, free);
        const float width = font.getStringWidthFloat (m.label) + 2.0f;
        g.drawText (m.label, juce::Rectangle<float> (left, static_cast<float> (top), width, static_cast<float> (marks)),
                    juce::Justification::centredLeft, false);
        free = left + width + 6.0f;
    }
}

/** The ruler and the lines through the roll: bars and beats where the song has them, else seconds. */
void drawTimeGrid (juce::Graphics& g, const PageView& v, int rulerTop, int rollTop, int rollBottom)
{
    const float left = static_cast<float> (margin), right = static_cast<float> (margin + v.timeWidth ());
    g.setColour (juce::Colour (0xff808088));
    g.drawHorizontalLine (rollTop - 1, left, right);
    g.setFont (juce::Font (10.0f));
    auto line = [&] (float at, juce::uint32 colour, int from) {
        if (at < left - 0.5f || at > right + 0.5f)
            return;
        g.setColour (juce::Colour (colour));
        g.drawVerticalLine (static_cast<int> (at), static_cast<float> (from), static_cast<float> (rollBottom));
    };
    auto label = [&] (float at, const juce::String& s) {
        g.setColour (juce::Colour (0xff505058));
        g.drawText (s, static_cast<int> (at) + 2, rulerTop, 44, ruler - 4, juce::Justification::bottomLeft);
    };
    if (v.bars.empty ())
    {
        for (int sec = static_cast<int> (std::ceil (v.page.start - 1e-9)); sec <= v.page.end + 1e-9; ++sec)
        {
            line (v.x (sec), 0x40000000u, rollTop - 6);
            label (v.x (sec), clockText (sec));
        }
        return;
    }
    float lastLabel = -1e9f;
    for (std::size_t i = 0; i < v.bars.size (); ++i)
    {
        const auto& [at, bar] = v.bars[i];
        const double next = i + 1 < v.bars.size () ? v.bars[i + 1].first : v.page.end;
        if (!v.shows (at, std::max (next, at + 1e-6)) && at != v.page.end)
            continue;
        // The beats of the bar, faint, where they are 8 pixels apart or more.
        const double beatLength = 4.0 / bar.denominator;
        for (int b = 1; b < bar.numerator; ++b)
        {
            const double beatAt = secondsAt (v.outcome.tempi, bar.beat + b * beatLength);
            if (beatAt >= next - 1e-9)
                break;
            if ((beatAt - secondsAt (v.outcome.tempi, bar.beat + (b - 1) * beatLength)) * pixelsPerSecond >= 8.0)
                line (v.x (beatAt), 0x16000000u, rollTop);
        }
        line (v.x (at), 0x50000000u, rollTop - 6);
        const float xAt = v.x (at);
        if (xAt >= left - 0.5f && xAt - lastLabel >= 24.0f)
        {
            label (xAt, juce::String (bar.number));
            lastLabel = xAt;
        }
    }
}

/** Keys: black-key rows darker and named lighter, each octave's C in bold with a line below it. */
void drawKeys (juce::Graphics& g, const PageView& v, const Panel& p, int rollTop)
{
    auto y = [&] (int note) { return rollTop + (p.high - note) * rowHeight; };
    for (int note = p.low; note <= p.high; ++note)
    {
        const bool black = isBlackKey (note), c = pitchClass (note) == 0;
        g.setColour (black ? juce::Colour (0xffe4e4ec) : juce::Colour (0xfff6f6fa));
        g.fillRect (margin, y (note), v.timeWidth (), rowHeight);
        if (c)
        {
            g.setColour (juce::Colour (0xffb0b0c0));
            g.drawHorizontalLine (y (note) + rowHeight - 1, static_cast<float> (margin),
                                  static_cast<float> (margin + v.timeWidth ()));
        }
        g.setColour (c ? juce::Colours::black : black ? juce::Colour (0xffb0b0b8) : juce::Colour (0xff808088));
        g.setFont (juce::Font (c ? 10.0f : 9.5f, c ? juce::Font::bold : juce::Font::plain));
        g.drawText (pitchName (static_cast<float> ((note - 69) * 100)), 4, y (note), margin - 10, rowHeight,
                    juce::Justification::centredRight);
    }
}

void drawNotes (juce::Graphics& g, const PageView& v, const Panel& p, int rollTop, int rollBottom)
{
    auto y = [&] (int note) { return rollTop + (p.high - note) * rowHeight; };
    const juce::Font small (10.0f);
    for (const auto& r : p.rows)
    {
        if (!finite (r) || !v.shows (r.start, std::max (r.end, r.start + 1e-6)))
            continue;
        const float x0 = v.x (std::max (0.0, r.start)), x1 = std::max (x0 + 1.0f, v.x (r.end));
        if (r.rest)
        {
            g.setColour (juce::Colour (0x38303040));
            g.fillRect (juce::Rectangle<float> (x0, static_cast<float> (rollTop), x1 - x0,
                                                static_cast<float> (rollBottom - rollTop)));
            continue;
        }
        const int note = std::clamp (noteOf (r.pitchCents), p.low, p.high);
        const juce::Rectangle<float> box (x0, static_cast<float> (y (note)) + 1.0f, x1 - x0,
                                          static_cast<float> (rowHeight) - 2.0f);
        g.setColour (r.continuation ? juce::Colour (0xff9ec5f0) : juce::Colour (0xff2f6fc0));
        g.fillRoundedRectangle (box, 3.0f);
        g.setColour (juce::Colour (0xff1a3a66));
        g.drawRoundedRectangle (box, 3.0f, 1.0f);
        if (box.getWidth () >= 16.0f)  // narrower boxes would show only dots
        {
            g.setColour (r.continuation ? juce::Colours::black : juce::Colours::white);
            g.setFont (small);
            g.drawText (r.phonemes, box.reduced (2.0f, 0.0f), juce::Justification::centredLeft, true);
        }
    }
}

/**
 * What is not sung as typed, in red: a word's lost sounds after the last note
 * that sings it, a note whose text has no pronunciation; in orange, sounds on
 * notes that nobody typed.
 */
void drawLost (juce::Graphics& g, const PageView& v, const Panel& p, std::size_t panel, int rollTop)
{
    auto y = [&] (int note) { return rollTop + (p.high - std::clamp (note, p.low, p.high)) * rowHeight; };
    const juce::Font font (10.0f, juce::Font::bold);
    for (const auto& n : v.notices)
    {
        if (n.kind == Notice::Note || n.synthesiser != panel || !v.shows (n.markStart, n.markEnd + 1.0))
            continue;
        const float x0 = v.x (n.markStart), x1 = std::max (x0 + 2.0f, v.x (n.markEnd));
        const float top = static_cast<float> (y (n.markPitch));
        juce::String label;
        for (std::size_t k = 0; k < n.sounds.size (); ++k)
            label += (k ? " | " : "") + text (n.sounds[k]);
        // "+": sounds of the word that no note sings; "?": text without a pronunciation; "!": sounds nobody typed.
        label = n.kind == Notice::NotSung ? "+ " + label : n.kind == Notice::NotTyped ? "! " + label : "? " + text (n.text);
        const juce::Colour lost = n.kind == Notice::NotTyped ? untyped : dropped;
        g.setColour (lost);
        g.drawRoundedRectangle (juce::Rectangle<float> (x0, top, x1 - x0, static_cast<float> (rowHeight)), 3.0f, 2.0f);
        const auto f = fontFor (label, font);
        const float width = f.getStringWidthFloat (label) + 6.0f;
        const juce::Rectangle<float> box (x1 + 2.0f, top, width, static_cast<float> (rowHeight));
        g.setColour (juce::Colour (0xfffff0f0));
        g.fillRoundedRectangle (box, 3.0f);
        g.setColour (lost);
        g.drawRoundedRectangle (box, 3.0f, 1.0f);
        g.setFont (f);
        g.drawText (label, box.reduced (3.0f, 0.0f), juce::Justification::centredLeft, false);
    }
}

/**
 * Words under their notes: a bar as long as the notes that sing the word, the
 * word below its start, on the first of two lines where it fits, and cut
 * short before the next word on its line.
 */
void drawWords (juce::Graphics& g, const PageView& v, const Panel& p, int rollBottom)
{
    std::vector<const WordSpan*> shown;
    for (const auto& w : p.words)
        if (v.shows (w.start, std::max (w.end, w.start + 1e-6)))
            shown.push_back (&w);
    if (shown.empty ())
        return;
    const juce::Font lyric (11.0f);
    const float left = static_cast<float> (margin), right = static_cast<float> (margin + v.timeWidth ());
    auto start = [&] (const WordSpan& w) { return std::max (left, v.x (std::max (0.0, w.start))); };
    std::vector<int> line (shown.size (), 0);
    float ends[lyricLines] = {-1e9f, -1e9f};
    for (std::size_t i = 0; i < shown.size (); ++i)
    {
        const float at = start (*shown[i]);
        int k = 0;
        while (k < lyricLines && ends[k] + 4.0f > at)
            ++k;
        if (k == lyricLines)
            k = ends[0] <= ends[1] ? 0 : 1;
        line[i] = k;
        const auto word = text (shown[i]->word);
        ends[k] = at + fontFor (word, lyric).getStringWidthFloat (word);
    }
    for (std::size_t i = 0; i < shown.size (); ++i)
    {
        const auto& w = *shown[i];
        const float x0 = start (w), x1 = std::min (right, std::max (x0 + 2.0f, v.x (w.end) - 2.0f));
        g.setColour (juce::Colour (0xff2f6fc0));
        g.fillRect (juce::Rectangle<float> (x0, static_cast<float> (rollBottom + 1), std::max (2.0f, x1 - x0), 2.0f));
        float room = static_cast<float> (v.page.width) - x0;
        for (std::size_t j = i + 1; j < shown.size (); ++j)
            if (line[j] == line[i])
            {
                room = start (*shown[j]) - x0 - 3.0f;
                break;
            }
        if (room < 8.0f)
            continue;
        const auto word = text (w.word);
        g.setColour (juce::Colours::black);
        g.setFont (fontFor (word, lyric));
        g.drawText (word,
                    juce::Rectangle<float> (x0, static_cast<float> (rollBottom + lyricTop + line[i] * lyricLine), room,
                                            static_cast<float> (lyricLine)),
                    juce::Justification::centredLeft, true);
    }
}

juce::Image drawPage (const PageView& v)
{
    juce::Image image (juce::Image::RGB, v.page.width, v.page.height, false);  // painted white whole below
    juce::Graphics g (image);
    g.fillAll (juce::Colours::white);
    const juce::Font label (12.0f, juce::Font::bold);
    int top = 0;
    for (std::size_t s = 0; s < v.panels.size (); ++s)
    {
        const Panel& p = v.panels[s];
        const auto& synth = v.outcome.synthesisers[s];
        const auto heading = v.title + " - " + text (synth.track + " / " + synth.slot);
        g.setColour (juce::Colours::black);
        g.setFont (fontFor (heading, label));
        g.drawText (heading, margin, top + 4, v.page.width - 2 * margin, header - 8, juce::Justification::centredLeft);

        const int marksTop = top + header, rulerTop = marksTop + marks, rollTop = rulerTop + ruler;
        const int rollBottom = rollTop + p.rollHeight ();
        drawMarks (g, v, marksTop);
        drawKeys (g, v, p, rollTop);
        drawTimeGrid (g, v, rulerTop, rollTop, rollBottom);
        {
            // Notes that cross into the next page are cut at its edge; the red labels may use the margin.
            juce::Graphics::ScopedSaveState keep (g);
            g.reduceClipRegion (margin, rollTop, v.timeWidth (), p.rollHeight ());
            drawNotes (g, v, p, rollTop, rollBottom);
        }
        {
            juce::Graphics::ScopedSaveState keep (g);
            g.reduceClipRegion (margin, rollTop, v.timeWidth () + margin, p.rollHeight ());
            drawLost (g, v, p, s, rollTop);
        }
        drawWords (g, v, p, rollBottom);
        top += p.height ();
    }
    return image;
}

} // namespace

std::vector<RollPage> pianoRollPages (const Outcome& outcome)
{
    double end = 0.0;
    const auto all = panels (outcome, end);
    int height = 0;
    for (const auto& p : all)
        height += p.height ();
    std::vector<RollPage> pages;
    for (const auto& [from, to] : stretches (outcome, end))
        pages.push_back ({from, to, 2 * margin + static_cast<int> (std::ceil ((to - from) * pixelsPerSecond - 1e-6)),
                          std::max (height, header)});
    return pages;
}

std::vector<std::string> pageFiles (const std::string& path, std::size_t pages)
{
    if (pages <= 1)
        return {path};
    const auto slash = path.find_last_of ("/\\");
    const auto dot = path.rfind ('.');
    const bool hasExtension = dot != std::string::npos && dot > (slash == std::string::npos ? 0 : slash + 1);
    const std::string stem = hasExtension ? path.substr (0, dot) : path;
    const std::string extension = hasExtension ? path.substr (dot) : std::string ();
    const std::size_t digits = std::to_string (pages).size ();
    std::vector<std::string> out;
    for (std::size_t i = 1; i <= pages; ++i)
    {
        std::string number = std::to_string (i);
        number.insert (0, digits - number.size (), '0');
        out.push_back (stem + "-" + number + extension);
    }
    return out;
}

bool writePianoRoll (const Outcome& outcome, const std::vector<Notice>& notices, const std::string& title,
                     const std::string& path, std::string& error)
{
    double end = 0.0;
    const auto all = panels (outcome, end);
    const auto bars = barTimes (outcome, end);
    const auto pages = pianoRollPages (outcome);
    const auto files = pageFiles (path, pages.size ());

    // Every page is made before the first is written, so that a failure to draw leaves all files as they were.
    std::vector<std::vector<std::uint8_t>> encoded;
    for (std::size_t i = 0; i < pages.size (); ++i)
    {
        juce::String heading = text (title);
        if (pages.size () > 1)
            heading += "  (page " + juce::String (i + 1) + " of " + juce::String (pages.size ()) + ", "
                       + clockText (pages[i].start) + "-" + clockText (pages[i].end) + ")";
        const PageView view {outcome, all, notices, bars, pages[i], heading};
        juce::MemoryOutputStream stream;
        juce::PNGImageFormat png;
        if (!png.writeImageToStream (drawPage (view), stream))
        {
            error = "cannot encode the piano roll as PNG";
            return false;
        }
        const auto* data = static_cast<const std::uint8_t*> (stream.getData ());
        encoded.emplace_back (data, data + stream.getDataSize ());
    }
    for (std::size_t i = 0; i < files.size (); ++i)
        if (!replaceFile (files[i], encoded[i], error))
            return false;
    return true;
}

} // namespace Workbench
