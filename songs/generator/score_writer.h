// Our own MusicXML scores, written part by part as a notation program exports them.
#pragma once

#include <string>
#include <vector>

namespace Songs {

/**
 * A partwise MusicXML score in 4/4. Words follow a short hand: "Lan-" begins
 * a word that goes on, "-tern" ends one, "-e-" is a middle syllable, a
 * trailing "_" draws an extension line; one text per verse. A note that
 * crosses a barline is written as two tied notes.
 */
class ScoreWriter
{
public:
    explicit ScoreWriter (const std::string& title, int divisions = 4);

    /** Starts a part; what follows is its own. */
    ScoreWriter& part (const std::string& name);
    /** A tempo mark at the current place. */
    ScoreWriter& tempo (double bpm);
    /** A note of `beats` quarter notes (MIDI pitch, C4 is 60) with one text per verse. */
    ScoreWriter& note (int pitch, double beats, const std::vector<std::string>& verses = {});
    /** A note that sounds with the last one, of the same length. */
    ScoreWriter& chord (int pitch);
    ScoreWriter& rest (double beats);

    std::string text () const;

private:
    int room ();  ///< divisions left in the measure, a new one begun when it is full
    void write (const std::string& body, int length);
    void barline ();

    struct Part
    {
        std::string name;
        std::vector<std::string> measures;
    };
    std::string title_;
    int divisions_;
    std::vector<Part> parts_;
    int filled_ = 0;  // divisions into the current measure
    std::string lastNote_;
    int lastLength_ = 0;
};

} // namespace Songs
