#include "songs/generator/score_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Songs {

namespace {

std::string pitchXml (int pitch)
{
    static const char steps[] = "CCDDEFFGGAAB";
    static const bool sharp[] = {false, true, false, true, false, false, true, false, true, false, true, false};
    const int pc = pitch % 12;
    std::string xml = "<pitch><step>" + std::string (1, steps[pc]) + "</step>";
    if (sharp[pc])
        xml += "<alter>1</alter>";
    return xml + "<octave>" + std::to_string (pitch / 12 - 1) + "</octave></pitch>";
}

std::string lyricXml (std::string text, int number)
{
    const bool extend = !text.empty () && text.back () == '_';
    if (extend)
        text.pop_back ();
    const bool goesOn = !text.empty () && text.back () == '-';
    const bool wentOn = !text.empty () && text.front () == '-';
    if (goesOn)
        text.pop_back ();
    if (wentOn)
        text.erase (0, 1);
    const char* syllabic = wentOn ? (goesOn ? "middle" : "end") : (goesOn ? "begin" : "single");
    return "<lyric number=\"" + std::to_string (number) + "\"><syllabic>" + syllabic + "</syllabic><text>" + text
           + "</text>" + (extend ? "<extend/>" : "") + "</lyric>";
}

} // namespace

ScoreWriter::ScoreWriter (const std::string& title, int divisions) : title_ (title), divisions_ (divisions) {}

ScoreWriter& ScoreWriter::part (const std::string& name)
{
    parts_.push_back ({name, {}});
    filled_ = 0;
    barline ();
    return *this;
}

ScoreWriter& ScoreWriter::tempo (double bpm)
{
    char buf[64];
    std::snprintf (buf, sizeof buf, "<direction><sound tempo=\"%g\"/></direction>", bpm);
    room ();
    write (buf, 0);
    return *this;
}

ScoreWriter& ScoreWriter::note (int pitch, double beats, const std::vector<std::string>& verses)
{
    std::string words;
    for (std::size_t v = 0; v < verses.size (); ++v)
        if (!verses[v].empty ())
            words += lyricXml (verses[v], static_cast<int> (v + 1));
    int length = static_cast<int> (std::lround (beats * divisions_));
    lastNote_ = pitchXml (pitch);
    // Across a barline: the part in this measure ties over to the rest in the next.
    for (bool tiedIn = false; length > 0; tiedIn = true)
    {
        const int here = std::min (length, room ());
        length -= here;
        lastLength_ = here;
        const std::string ties =
            std::string (tiedIn ? "<tie type=\"stop\"/>" : "") + (length > 0 ? "<tie type=\"start\"/>" : "");
        write ("<note>" + lastNote_ + "<duration>" + std::to_string (here) + "</duration>" + ties + "<voice>1</voice>"
                   + (tiedIn ? "" : words) + "</note>",
               here);
    }
    return *this;
}

ScoreWriter& ScoreWriter::chord (int pitch)
{
    // With the last piece of the last note, should it have been tied over a barline.
    parts_.back ().measures.back () += "<note><chord/>" + pitchXml (pitch) + "<duration>"
                                       + std::to_string (lastLength_) + "</duration><voice>1</voice></note>\n";
    return *this;
}

ScoreWriter& ScoreWriter::rest (double beats)
{
    for (int length = static_cast<int> (std::lround (beats * divisions_)); length > 0;)
    {
        const int here = std::min (length, room ());
        length -= here;
        write ("<note><rest/><duration>" + std::to_string (here) + "</duration><voice>1</voice></note>", here);
    }
    return *this;
}

int ScoreWriter::room ()
{
    if (filled_ == 4 * divisions_)
    {
        barline ();
        filled_ = 0;
    }
    return 4 * divisions_ - filled_;
}

void ScoreWriter::write (const std::string& body, int length)
{
    parts_.back ().measures.back () += body + "\n";
    filled_ += length;
}

void ScoreWriter::barline ()
{
    auto& measures = parts_.back ().measures;
    measures.push_back ("<measure number=\"" + std::to_string (measures.size () + 1) + "\">\n");
    if (measures.size () == 1)
        measures.back () += "<attributes><divisions>" + std::to_string (divisions_)
                            + "</divisions><time><beats>4</beats><beat-type>4</beat-type></time></attributes>\n";
}

std::string ScoreWriter::text () const
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<score-partwise version=\"4.0\">\n<work><work-title>"
                      + title_ + "</work-title></work>\n<part-list>\n";
    for (std::size_t p = 0; p < parts_.size (); ++p)
        xml += "<score-part id=\"P" + std::to_string (p + 1) + "\"><part-name>" + parts_[p].name
               + "</part-name></score-part>\n";
    xml += "</part-list>\n";
    for (std::size_t p = 0; p < parts_.size (); ++p)
    {
        xml += "<part id=\"P" + std::to_string (p + 1) + "\">\n";
        for (const auto& m : parts_[p].measures)
            xml += m + "</measure>\n";
        xml += "</part>\n";
    }
    return xml + "</score-partwise>\n";
}

} // namespace Songs
