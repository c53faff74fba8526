#include "workbench/cli/report.h"

#include "workbench/cli/song_time.h"
#include "workbench/sim/note_rows.h"

#include "score/song_position.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace Workbench {

namespace {

// mingw takes "printf" for Microsoft's checks; the C99 printf used there is "gnu_printf".
#if defined(__MINGW32__)
#define REPORT_PRINTF_FORMAT gnu_printf
#else
#define REPORT_PRINTF_FORMAT printf
#endif
std::string format (const char* fmt, ...) __attribute__ ((format (REPORT_PRINTF_FORMAT, 1, 2)));
std::string format (const char* fmt, ...)
{
    char buf[512];
    va_list args;
    va_start (args, fmt);
    std::vsnprintf (buf, sizeof buf, fmt, args);
    va_end (args);
    return buf;
}

const char* kind (const Sim::NoteRow& row) { return row.rest ? "rest" : (row.continuation ? "cont" : "note"); }

std::string quoted (const std::string& s)
{
    std::string out = "\"";
    for (unsigned char c : s)
    {
        if (c == '"' || c == '\\')
            out += '\\', out += static_cast<char> (c);
        else if (c < 0x20)
            out += format ("\\u%04x", c);
        else
            out += static_cast<char> (c);
    }
    return out + "\"";
}

/** Columns a text takes in a terminal: East Asian wide characters take two. */
std::size_t columns (const std::string& s)
{
    std::size_t n = 0;
    for (std::size_t i = 0; i < s.size ();)
    {
        const auto c = static_cast<unsigned char> (s[i]);
        const std::size_t len = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 1;
        std::uint32_t cp = len == 1 ? c : c & (0x7Fu >> len);
        for (std::size_t k = 1; k < len && i + k < s.size (); ++k)
            cp = (cp << 6) | (static_cast<unsigned char> (s[i + k]) & 0x3Fu);
        i += len;
        const bool wide = (cp >= 0x1100 && cp <= 0x115F) || (cp >= 0x2E80 && cp <= 0xA4CF)
                          || (cp >= 0xAC00 && cp <= 0xD7A3) || (cp >= 0xF900 && cp <= 0xFAFF)
                          || (cp >= 0xFF00 && cp <= 0xFF60) || (cp >= 0xFFE0 && cp <= 0xFFE6)
                          || (cp >= 0x20000 && cp <= 0x3FFFD);
        n += wide ? 2 : 1;
    }
    return n;
}

/** A lyric in a column of `width`: control characters would break the row. */
std::string cell (std::string text, std::size_t width)
{
    for (char& c : text)
        if (static_cast<unsigned char> (c) < 0x20)
            c = ' ';
    const std::size_t used = columns (text);
    return used < width ? text + std::string (width - used, ' ') : text;
}

} // namespace

std::string pitchName (float cents)
{
    static const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
    const double semis = 69.0 + static_cast<double> (cents) / 100.0;
    const long nearest = std::lround (semis);
    const long off = std::lround ((semis - static_cast<double> (nearest)) * 100.0);
    const long pc = ((nearest % 12) + 12) % 12;
    const long octave = (nearest - pc) / 12 - 1;  // MIDI note 60 is C4
    std::string name = names[pc] + std::to_string (octave);
    if (off != 0)
        name += format ("%+ld", off);
    return name;
}

std::string table (const std::string& song, const Outcome& outcome)
{
    std::string out = outcome.title.empty () ? song + "\n" : song + "  \"" + outcome.title + "\"\n";
    const bool bars = !outcome.meters.empty ();
    for (const auto& synth : outcome.synthesisers)
    {
        const auto rows = Sim::rowsOf (synth.notes);
        out += format ("== %s / %s  (%zu records)  \"%s\"\n", synth.track.c_str (), synth.slot.c_str (), rows.size (),
                       synth.title.c_str ());
        // The lyric column is as wide as its longest text, within reason.
        std::size_t width = 5;
        for (const auto& lyric : synth.lyrics)
            width = std::max (width, std::min<std::size_t> (columns (lyric), 24));
        out += format ("%4s %s%9s %9s  %-6s %4s %6s  %-4s  ", "#", bars ? "bar:beat " : "", "start", "end", "pitch",
                       "note", "cents", "kind")
               + cell ("lyric", width) + "  phonemes\n";
        for (std::size_t i = 0; i < rows.size (); ++i)
        {
            const auto& r = rows[i];
            std::string place;
            if (bars)
                place = cell (Score::barBeat (outcome.meters, beatsAt (outcome.tempi, r.start)), 8) + " ";
            // A rest has the pitch of the note after it, which no one hears.
            const std::string pitch = r.rest ? format ("%-6s %4s %6s", "", "", "")
                                             : format ("%-6s %4ld %6.0f", pitchName (r.pitchCents).c_str (),
                                                       std::lround (69.0 + r.pitchCents / 100.0),
                                                       static_cast<double> (r.pitchCents));
            out += format ("%4zu %s%9.3f %9.3f  %s  %-4s  ", i + 1, place.c_str (), r.start, r.end, pitch.c_str (),
                           kind (r))
                   + cell (i < synth.lyrics.size () ? synth.lyrics[i] : std::string (), width) + "  " + r.phonemes
                   + "\n";
        }
        out += "\n";
    }
    return out;
}

std::string json (const std::string& song, const Outcome& outcome, const std::vector<Notice>& notices)
{
    const bool bars = !outcome.meters.empty ();
    std::string out = format ("{\n  \"format\": %d,\n  \"song\": ", jsonFormat) + quoted (song)
                      + ",\n  \"title\": " + (outcome.title.empty () ? "null" : quoted (outcome.title))
                      + ",\n  \"tempi\": [";
    for (std::size_t i = 0; i < outcome.tempi.size (); ++i)
        out += format ("%s{\"beat\": %.6f, \"seconds\": %.6f, \"bpm\": %.3f}", i ? ", " : "", outcome.tempi[i].beat,
                       secondsAt (outcome.tempi, outcome.tempi[i].beat), outcome.tempi[i].bpm);
    out += "],\n  \"meters\": [";
    for (std::size_t i = 0; i < outcome.meters.size (); ++i)
        out += format ("%s{\"beat\": %.6f, \"numerator\": %d, \"denominator\": %d}", i ? ", " : "",
                       outcome.meters[i].beat, outcome.meters[i].numerator, outcome.meters[i].denominator);
    out += "],\n  \"synthesisers\": [";
    for (std::size_t s = 0; s < outcome.synthesisers.size (); ++s)
    {
        const auto& synth = outcome.synthesisers[s];
        out += s ? ",\n" : "\n";
        out += "    {\"track\": " + quoted (synth.track) + ", \"slot\": " + quoted (synth.slot)
               + ", \"title\": " + quoted (synth.title) + ",\n     \"notes\": [";
        const auto rows = Sim::rowsOf (synth.notes);
        for (std::size_t i = 0; i < rows.size (); ++i)
        {
            const auto& r = rows[i];
            std::string phonemes;
            for (int k = 0; k < synth.notes[i].phonemeCount && k < 8; ++k)
            {
                // An entry is at most eight bytes; it need not end in a zero.
                const char* p = synth.notes[i].phonemes[k];
                std::size_t len = 0;
                while (len < 8 && p[len])
                    ++len;
                phonemes += (k ? ", " : "") + quoted (std::string (p, len));
            }
            out += i ? ",\n      " : "\n      ";
            out += format ("{\"start\": %.6f, \"end\": %.6f, ", r.start, r.end);
            if (bars)
                out += "\"at\": " + quoted (Score::barBeat (outcome.meters, beatsAt (outcome.tempi, r.start))) + ", ";
            out += r.rest ? std::string ("\"pitch\": null, \"note\": null, ")
                          : format ("\"pitch\": \"%s\", \"note\": %ld, ", pitchName (r.pitchCents).c_str (),
                                    std::lround (69.0 + r.pitchCents / 100.0));
            out += format ("\"cents\": %.1f, \"rest\": %s, \"continuation\": %s, \"lyric\": ",
                           static_cast<double> (r.pitchCents), r.rest ? "true" : "false",
                           r.continuation ? "true" : "false")
                   + (r.rest ? "null" : quoted (i < synth.lyrics.size () ? synth.lyrics[i] : std::string ()))
                   + ", \"phonemes\": [" + phonemes + "]}";
        }
        out += rows.empty () ? "]}" : "\n     ]}";
    }
    out += outcome.synthesisers.empty () ? "],\n  \"notices\": [" : "\n  ],\n  \"notices\": [";
    for (std::size_t i = 0; i < notices.size (); ++i)
    {
        const Notice& n = notices[i];
        out += (i ? ",\n    {" : "\n    {") + std::string ("\"kind\": \"") + kindName (n.kind) + "\", \"message\": "
               + quoted (n.message);
        if (n.kind != Notice::Note)
        {
            out += ", \"track\": " + quoted (n.track) + ", \"at\": " + quoted (Score::barBeat (outcome.meters, n.beats))
                   + format (", \"seconds\": %.6f, \"note\": %d, \"pitch\": \"%s\"", n.seconds, n.pitch,
                             pitchName (static_cast<float> ((n.pitch - 69) * 100)).c_str ())
                   + ", \"word\": " + quoted (n.word);
            if (n.kind == Notice::NotSung || n.kind == Notice::NotTyped)
            {
                out += ", \"sounds\": [";
                for (std::size_t k = 0; k < n.sounds.size (); ++k)
                    out += (k ? ", " : "") + quoted (n.sounds[k]);
                out += "]";
            }
            else
                out += ", \"text\": " + quoted (n.text) + ", \"sungAs\": " + quoted (n.sungAs);
        }
        out += "}";
    }
    out += notices.empty () ? "]\n}\n" : "\n  ]\n}\n";
    return out;
}

std::string timingText (const Outcome& o)
{
    const auto& t = o.timing;
    std::size_t notes = 0;
    for (auto& s : o.synthesisers)
        notes += s.notes.size ();
    return format ("timing: load %.3f s, project %.3f s, %d lyric edits %.3f s, %d idle passes %.3f s, "
                   "undo %d/redo %d %.3f s, teardown %.3f s, total %.3f s; %zu records sent, %lld host calls\n",
                   t.load, t.build, t.lyricEdits, t.edits, t.idleCalls, t.idle, t.undone, t.redone, t.history,
                   t.teardown, t.total, notes, t.hostCalls);
}

} // namespace Workbench
