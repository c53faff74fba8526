#include "workbench/cli/piano_roll.h"

#include "workbench/cli/report.h"
#include "workbench/sim/note_rows.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

constexpr int margin = 64, header = 24, gapBelow = 8, rowHeight = 14;
constexpr double maxTimeWidth = 6000.0;

struct Panel
{
    std::vector<Sim::NoteRow> rows;
    int low = 60, high = 60;  // MIDI notes, one spare on each side
    int height () const { return header + (high - low + 1) * rowHeight + gapBelow; }
};

int noteOf (float cents) { return static_cast<int> (std::lround (69.0 + static_cast<double> (cents) / 100.0)); }

std::vector<Panel> panels (const Outcome& outcome, double& pixelsPerSecond, int& timeWidth)
{
    std::vector<Panel> out;
    double end = 0.0;
    for (const auto& synth : outcome.synthesisers)
    {
        Panel p;
        p.rows = Sim::rowsOf (synth.notes);
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

bool isBlackKey (int note)
{
    const int pc = ((note % 12) + 12) % 12;
    return pc == 1 || pc == 3 || pc == 6 || pc == 8 || pc == 10;
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
        const juce::Font small (10.0f), label (12.0f, juce::Font::bold);
        auto x = [&] (double seconds) { return static_cast<float> (margin + seconds * pps); };

        int top = 0;
        for (std::size_t s = 0; s < all.size (); ++s)
        {
            const Panel& p = all[s];
            const auto& synth = outcome.synthesisers[s];
            g.setColour (juce::Colours::black);
            g.setFont (label);
            g.drawText (title + " - " + synth.track + " / " + synth.slot, margin, top + 4, size.width - 2 * margin,
                        header - 8, juce::Justification::centredLeft);
            const int rollTop = top + header;
            auto y = [&] (int note) { return rollTop + (p.high - note) * rowHeight; };

            // Keys: black-key rows darker, note names on each C.
            g.setFont (small);
            for (int note = p.low; note <= p.high; ++note)
            {
                g.setColour (isBlackKey (note) ? juce::Colour (0xffe4e4ec) : juce::Colour (0xfff6f6fa));
                g.fillRect (margin, y (note), timeWidth, rowHeight);
                if (((note % 12) + 12) % 12 == 0)
                {
                    g.setColour (juce::Colours::darkgrey);
                    g.drawText (pitchName (static_cast<float> ((note - 69) * 100)), 4, y (note), margin - 8, rowHeight,
                                juce::Justification::centredRight);
                }
            }
            // A line every second.
            g.setColour (juce::Colour (0x30000000));
            for (int sec = 0; margin + sec * pps <= margin + timeWidth; ++sec)
                g.drawVerticalLine (static_cast<int> (x (sec)), static_cast<float> (rollTop),
                                    static_cast<float> (y (p.low) + rowHeight));

            const float rollBottom = static_cast<float> (y (p.low) + rowHeight);
            for (const auto& r : p.rows)
            {
                if (!std::isfinite (r.start) || !std::isfinite (r.end))
                    continue;
                const float x0 = x (std::max (0.0, r.start)), x1 = std::max (x0 + 1.0f, x (r.end));
                if (r.rest)
                {
                    g.setColour (juce::Colour (0x38303040));
                    g.fillRect (juce::Rectangle<float> (x0, static_cast<float> (rollTop), x1 - x0,
                                                        rollBottom - static_cast<float> (rollTop)));
                    continue;
                }
                const int note = std::clamp (noteOf (r.pitchCents), p.low, p.high);
                const juce::Rectangle<float> box (x0, static_cast<float> (y (note)) + 1.0f, x1 - x0,
                                                  static_cast<float> (rowHeight) - 2.0f);
                g.setColour (r.continuation ? juce::Colour (0xff9ec5f0) : juce::Colour (0xff2f6fc0));
                g.fillRoundedRectangle (box, 3.0f);
                g.setColour (juce::Colour (0xff1a3a66));
                g.drawRoundedRectangle (box, 3.0f, 1.0f);
                g.setColour (r.continuation ? juce::Colours::black : juce::Colours::white);
                g.drawText (r.phonemes, box.reduced (2.0f, 0.0f), juce::Justification::centredLeft, true);
            }
            top += p.height ();
        }
    }

    juce::File file (juce::File::getCurrentWorkingDirectory ().getChildFile (juce::String::fromUTF8 (path.c_str ())));
    file.deleteFile ();
    juce::FileOutputStream stream (file);
    if (!stream.openedOk ())
    {
        error = "cannot write " + path;
        return false;
    }
    juce::PNGImageFormat png;
    if (!png.writeImageToStream (image, stream))
    {
        error = "cannot encode the piano roll as PNG";
        return false;
    }
    stream.flush ();
    return true;
}

} // namespace Workbench
