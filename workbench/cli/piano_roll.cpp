#include "workbench/cli/piano_roll.h"

#include "workbench/cli/file_output.h"
#include "workbench/cli/host_notes.h"
#include "workbench/cli/report.h"
#include "workbench/sim/note_rows.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

constexpr int margin = 64, header = 24, ruler = 18, gapBelow = 8, rowHeight = 14;
constexpr int lyricLines = 2, lyricLine = 14, lyricTop = 5;  // the lane of words below the keys
constexpr double maxTimeWidth = 6000.0;

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
    int height () const { return header + ruler + rollHeight () + lyricHeight () + gapBelow; }
};

int noteOf (float cents) { return static_cast<int> (std::lround (69.0 + static_cast<double> (cents) / 100.0)); }

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
        if (r.rest || i >= lyrics.size () || lyrics[i].empty () || !std::isfinite (r.start) || !std::isfinite (r.end))
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

std::vector<Panel> panels (const Outcome& outcome, double& pixelsPerSecond, int& timeWidth)
{
    std::vector<Panel> out;
    double end = 0.0;
    for (const auto& synth : outcome.synthesisers)
    {
        Panel p;
        p.rows = Sim::rowsOf (synth.notes);
        p.words = wordSpans (p.rows, synth.lyrics);
        int lo = 1000, hi = -1000;
        for (const auto& r : p.rows)
        {
            if (!std::isfinite (r.end) || !std::isfinite (r.start))
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
    end = std::min (end, 36000.0);  // an absurd time line still gives a finite image
    pixelsPerSecond = end * 100.0 > maxTimeWidth ? maxTimeWidth / end : 100.0;
    timeWidth = static_cast<int> (std::ceil (end * pixelsPerSecond));
    return out;
}

int pitchClass (int note) { return ((note % 12) + 12) % 12; }

bool isBlackKey (int note)
{
    const int pc = pitchClass (note);
    return pc == 1 || pc == 3 || pc == 6 || pc == 8 || pc == 10;
}

/** Seconds between labelled marks of the ruler: at least 48 pixels apart. */
double rulerStep (double pixelsPerSecond)
{
    for (double step : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0})
        if (step * pixelsPerSecond >= 48.0)
            return step;
    return 1800.0;
}

juce::String clockText (double seconds)
{
    const int s = static_cast<int> (std::lround (seconds));
    return juce::String (s / 60) + ":" + juce::String (s % 60).paddedLeft ('0', 2);
}

/**
 * The toolkit draws nothing for a glyph that its font lacks and falls back to
 * no other font, so text with kana or kanji takes a Japanese font where one is
 * installed (`fonts-vlgothic`).
 */
juce::Font fontFor (const juce::String& text, const juce::Font& base)
{
    static const bool installed = juce::Font::findAllTypefaceNames ().contains ("VL PGothic");
    if (!installed)
        return base;
    for (auto p = text.getCharPointer (); !p.isEmpty ();)
        if (p.getAndAdvance () >= 0x2E80)
            return juce::Font ("VL PGothic", base.getHeight (), base.getStyleFlags ());
    return base;
}

} // namespace

RollSize pianoRollSize (const Outcome& outcome)
{
    double pps = 0.0;
    int timeWidth = 0;
    const auto all = panels (outcome, pps, timeWidth);
    RollSize size;
    size.width = 2 * margin + timeWidth;
    for (const auto& p : all)
        size.height += p.height ();
    size.height = std::max (size.height, header);
    return size;
}

bool writePianoRoll (const Outcome& outcome, const std::string& title, const std::string& path, std::string& error)
{
    double pps = 0.0;
    int timeWidth = 0;
    const auto all = panels (outcome, pps, timeWidth);
    const RollSize size = pianoRollSize (outcome);

    juce::Image image (juce::Image::RGB, size.width, size.height, true);
    {
        juce::Graphics g (image);
        g.fillAll (juce::Colours::white);
        const juce::Font small (10.0f), label (12.0f, juce::Font::bold), octave (10.0f, juce::Font::bold),
            lyric (11.0f);
        auto x = [&] (double seconds) { return static_cast<float> (margin + seconds * pps); };
        const double step = rulerStep (pps);
        const double seconds = timeWidth / pps;

        int top = 0;
        for (std::size_t s = 0; s < all.size (); ++s)
        {
            const Panel& p = all[s];
            const auto& synth = outcome.synthesisers[s];
            const auto heading = juce::String::fromUTF8 ((title + " - " + synth.track + " / " + synth.slot).c_str ());
            g.setColour (juce::Colours::black);
            g.setFont (fontFor (heading, label));
            g.drawText (heading, margin, top + 4, size.width - 2 * margin, header - 8,
                        juce::Justification::centredLeft);

            // The time ruler: a mark every step, labelled minutes and seconds.
            const int rulerTop = top + header;
            const int rollTop = rulerTop + ruler;
            const int rollBottom = rollTop + p.rollHeight ();
            g.setFont (small);
            g.setColour (juce::Colour (0xff808088));
            g.drawHorizontalLine (rollTop - 1, static_cast<float> (margin), static_cast<float> (margin + timeWidth));
            for (int i = 0; i * step <= seconds + 1e-9; ++i)
            {
                const float at = x (i * step);
                g.drawVerticalLine (static_cast<int> (at), static_cast<float> (rollTop - 6), static_cast<float> (rollTop));
                g.drawText (clockText (i * step), static_cast<int> (at) + 2, rulerTop, 44, ruler - 4,
                            juce::Justification::bottomLeft);
            }

            // Keys: black-key rows darker, white keys named at the left, each octave's C
            // in bold with a line below it.
            auto y = [&] (int note) { return rollTop + (p.high - note) * rowHeight; };
            for (int note = p.low; note <= p.high; ++note)
            {
                g.setColour (isBlackKey (note) ? juce::Colour (0xffe4e4ec) : juce::Colour (0xfff6f6fa));
                g.fillRect (margin, y (note), timeWidth, rowHeight);
                if (isBlackKey (note))
                    continue;
                const bool c = pitchClass (note) == 0;
                if (c)
                {
                    g.setColour (juce::Colour (0xffb0b0c0));
                    g.drawHorizontalLine (y (note) + rowHeight - 1, static_cast<float> (margin),
                                          static_cast<float> (margin + timeWidth));
                }
                g.setColour (c ? juce::Colours::black : juce::Colour (0xff909098));
                g.setFont (c ? octave : small);
                g.drawText (pitchName (static_cast<float> ((note - 69) * 100)), 4, y (note), margin - 10, rowHeight,
                            juce::Justification::centredRight);
            }

            // A faint line every second where they are far enough apart, a firmer one at each mark.
            for (int sec = 0; sec <= seconds + 1e-9; ++sec)
            {
                const bool mark = std::fmod (sec, step) == 0.0;
                if (!mark && pps < 12.0)
                    continue;
                g.setColour (juce::Colour (mark ? 0x40000000u : 0x18000000u));
                g.drawVerticalLine (static_cast<int> (x (sec)), static_cast<float> (rollTop),
                                    static_cast<float> (rollBottom));
            }

            for (const auto& r : p.rows)
            {
                if (!std::isfinite (r.start) || !std::isfinite (r.end))
                    continue;
                const float x0 = x (std::max (0.0, r.start)), x1 = std::max (x0 + 1.0f, x (r.end));
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

            // Words under their notes: a bar as long as the notes that sing the word, the word
            // below its start, on the first of two lines where it fits, and cut short before
            // the next word on its line.
            if (!p.words.empty ())
            {
                g.setFont (lyric);
                std::vector<int> line (p.words.size (), 0);
                float ends[lyricLines] = {-1e9f, -1e9f};
                for (std::size_t i = 0; i < p.words.size (); ++i)
                {
                    const float at = x (std::max (0.0, p.words[i].start));
                    int k = 0;
                    while (k < lyricLines && ends[k] + 4.0f > at)
                        ++k;
                    if (k == lyricLines)
                        k = ends[0] <= ends[1] ? 0 : 1;
                    line[i] = k;
                    const auto word = juce::String::fromUTF8 (p.words[i].word.c_str ());
                    ends[k] = at + fontFor (word, lyric).getStringWidthFloat (word);
                }
                for (std::size_t i = 0; i < p.words.size (); ++i)
                {
                    const auto& w = p.words[i];
                    const float x0 = x (std::max (0.0, w.start)), x1 = std::max (x0 + 2.0f, x (w.end) - 2.0f);
                    g.setColour (juce::Colour (0xff2f6fc0));
                    g.fillRect (juce::Rectangle<float> (x0, static_cast<float> (rollBottom + 1), x1 - x0, 2.0f));
                    float room = static_cast<float> (size.width) - x0;
                    for (std::size_t j = i + 1; j < p.words.size (); ++j)
                        if (line[j] == line[i])
                        {
                            room = x (std::max (0.0, p.words[j].start)) - x0 - 3.0f;
                            break;
                        }
                    if (room < 8.0f)
                        continue;
                    const auto word = juce::String::fromUTF8 (w.word.c_str ());
                    g.setColour (juce::Colours::black);
                    g.setFont (fontFor (word, lyric));
                    g.drawText (word,
                                juce::Rectangle<float> (x0, static_cast<float> (rollBottom + lyricTop + line[i] * lyricLine),
                                                        room, static_cast<float> (lyricLine)),
                                juce::Justification::centredLeft, true);
                }
            }
            top += p.height ();
        }
    }

    juce::MemoryOutputStream encoded;
    juce::PNGImageFormat png;
    if (!png.writeImageToStream (image, encoded))
    {
        error = "cannot encode the piano roll as PNG";
        return false;
    }
    const auto* data = static_cast<const std::uint8_t*> (encoded.getData ());
    return replaceFile (path, std::vector<std::uint8_t> (data, data + encoded.getDataSize ()), error);
}

} // namespace Workbench
