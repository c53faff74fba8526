#include "score/midi_file.h"

#include <algorithm>
#include <stdexcept>

namespace Score {

namespace {

struct ParseError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** A bounds-checked cursor: every read either fits or throws. */
class Reader
{
public:
    Reader (const std::uint8_t* data, std::size_t size, std::string where)
        : p (data), n (size), where_ (std::move (where))
    {
    }
    std::size_t left () const { return n - pos; }
    bool atEnd () const { return pos >= n; }
    std::size_t offset () const { return pos; }

    std::uint8_t byte ()
    {
        need (1);
        return p[pos++];
    }
    std::uint8_t peek ()
    {
        need (1);
        return p[pos];
    }
    std::uint32_t be (int bytes)
    {
        need (static_cast<std::size_t> (bytes));
        std::uint32_t v = 0;
        for (int i = 0; i < bytes; ++i)
            v = (v << 8) | p[pos++];
        return v;
    }
    /** Variable-length quantity: at most four bytes, seven bits each. */
    std::uint32_t varlen ()
    {
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
        {
            if (atEnd ())
            {
                short_ = true;
                fail ("a variable-length number runs past the end of its chunk");
            }
            const std::uint8_t b = byte ();
            v = (v << 7) | (b & 0x7F);
            if (!(b & 0x80))
                return v;
        }
        fail ("a variable-length number runs past four bytes");
    }
    std::string bytes (std::uint32_t count)
    {
        need (count);
        std::string s (reinterpret_cast<const char*> (p + pos), count);
        pos += count;
        return s;
    }
    void skip (std::uint32_t count)
    {
        need (count);
        pos += count;
    }
    /** Whether the last failure was running out of bytes. */
    bool atEndOfData () const { return short_; }
    [[noreturn]] void fail (const std::string& what) const
    {
        throw ParseError (where_ + " at byte " + std::to_string (pos) + ": " + what);
    }

private:
    void need (std::size_t count)
    {
        short_ = count > n - pos;
        if (short_)
            fail ("truncated (needs " + std::to_string (count) + " more bytes, " + std::to_string (n - pos)
                  + " left)");
    }
    const std::uint8_t* p;
    std::size_t n;
    std::size_t pos = 0;
    std::string where_;
    bool short_ = false;
};

/** What one file's reading has counted so far, against `MidiLimits`. */
struct Budget
{
    std::size_t events = 0;
};

void countRepair (std::vector<MidiRepair>& repairs, int track, std::uint64_t tick, std::size_t& count,
                  const std::string& what)
{
    if (count++ == 0)
        repairs.push_back ({track, tick, true, what});
}

/**
 * One track chunk. `cut` says the chunk ran past the end of the file, so its
 * last event may be cut short; that event is left out, as a player would.
 */
MidiTrack parseTrack (const std::uint8_t* data, std::size_t size, int index, bool cut, Budget& budget,
                      std::vector<MidiRepair>& repairs)
{
    Reader r (data, size, "track " + std::to_string (index + 1));
    MidiTrack track;
    // An event takes three bytes at least. Reserving for that many costs address space, not
    // memory, and spares a long track the copies and page faults of growing step by step.
    track.events.reserve (std::min (size / 3, MidiLimits::events - std::min (budget.events, MidiLimits::events)));
    std::uint64_t tick = 0;
    int running = 0;
    bool afterMeta = false;   // running status from before a meta or sysex event, which should have ended it
    std::size_t goneOn = 0;   // how often it went on all the same
    std::size_t lastWhole = 0;
    std::uint64_t lastTick = 0;
    bool ended = false;
    try
    {
        while (!r.atEnd ())
        {
            lastWhole = track.events.size ();
            lastTick = tick;
            tick += r.varlen ();
            int status = r.peek ();
            if (status & 0x80)
                r.byte ();
            else if (running)
            {
                status = running;  // running status: the data byte is the first of the event
                if (afterMeta)
                    countRepair (repairs, index, tick, goneOn, "running status goes on after a meta or system-exclusive "
                                                               "event; read as the channel message before it");
            }
            else
                r.fail ("a data byte where an event should start");

            MidiEvent e;
            e.tick = tick;
            if (status < 0xF0)
            {
                running = status;
                afterMeta = false;
                const int type = status & 0xF0;
                e.channel = status & 0x0F;
                const int a = r.byte ();
                const int b = (type == 0xC0 || type == 0xD0) ? 0 : r.byte ();
                if ((a | b) & 0x80)
                    r.fail ("a status byte inside a channel message");
                if (type != 0x80 && type != 0x90)
                    continue;  // controllers and the like: nothing a song reader or writer keeps
                e.kind = type == 0x90 && b > 0 ? MidiEvent::NoteOn : MidiEvent::NoteOff;
                e.pitch = a;
                e.velocity = b;
            }
            else if (status == 0xF0 || status == 0xF7)
            {
                afterMeta = running != 0;
                r.skip (r.varlen ());
                continue;
            }
            else if (status == 0xFF)
            {
                afterMeta = running != 0;
                const int type = r.byte ();
                const std::uint32_t length = r.varlen ();
                if (type == 0x2F)
                {
                    r.skip (length);
                    ended = true;
                    track.events.push_back (std::move (e));  // where the track ends: notes left open end there
                    break;  // whatever follows is not part of the track
                }
                const bool text = type == 0x01 || type == 0x03 || type == 0x05;
                if (text && length > MidiLimits::textBytes)
                    r.fail ("a text event of " + std::to_string (length) + " bytes (at most "
                            + std::to_string (MidiLimits::textBytes) + " are read)");
                if (!text && type != 0x51 && type != 0x58)
                {
                    r.skip (length);
                    continue;
                }
                std::string payload = r.bytes (length);
                if (type == 0x51)
                {
                    if (length != 3)
                        r.fail ("a tempo event of " + std::to_string (length) + " bytes");
                    e.kind = MidiEvent::Tempo;
                    e.value = (std::uint32_t (std::uint8_t (payload[0])) << 16)
                              | (std::uint32_t (std::uint8_t (payload[1])) << 8) | std::uint8_t (payload[2]);
                }
                else if (type == 0x58)
                {
                    if (length < 2 || std::uint8_t (payload[0]) == 0 || std::uint8_t (payload[1]) > 6)
                        continue;
                    e.kind = MidiEvent::TimeSignature;
                    e.value = (std::uint32_t (std::uint8_t (payload[0])) << 8) | (1u << std::uint8_t (payload[1]));
                }
                else
                {
                    e.kind = type == 0x05 ? MidiEvent::Lyric : type == 0x01 ? MidiEvent::Text : MidiEvent::TrackName;
                    e.text = std::move (payload);
                }
            }
            else
                r.fail ("status byte " + std::to_string (status) + " has no place in a file");
            if (++budget.events > MidiLimits::events)
                r.fail ("more than " + std::to_string (MidiLimits::events) + " notes, tempi and texts in the file");
            track.events.push_back (std::move (e));
        }
    }
    catch (const ParseError&)
    {
        if (!cut || !r.atEndOfData ())
            throw;
        track.events.resize (lastWhole);
        repairs.push_back ({index, lastTick, true, "the file ends inside the track's last event; that event is left out"});
        return track;
    }
    if (!ended)
        repairs.push_back ({index, tick, true, "the track has no end-of-track event; it ends with its chunk"});
    return track;
}

void put (std::vector<std::uint8_t>& out, std::uint32_t v, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i)
        out.push_back (static_cast<std::uint8_t> (v >> (8 * i)));
}

void putVarlen (std::vector<std::uint8_t>& out, std::uint32_t v)
{
    std::uint8_t buf[5];
    int n = 0;
    buf[n++] = v & 0x7F;
    while ((v >>= 7) != 0)
        buf[n++] = static_cast<std::uint8_t> (0x80 | (v & 0x7F));
    while (n > 0)
        out.push_back (buf[--n]);
}

} // namespace

bool parseMidi (const std::uint8_t* data, std::size_t size, MidiFile& out, std::string& error)
{
    try
    {
        Reader r (data, size, "file");
        if (size < 4 || r.bytes (4) != "MThd")
        {
            error = "not a Standard MIDI File (no MThd header)";
            return false;
        }
        const std::uint32_t headerLength = r.be (4);
        if (headerLength < 6)
            r.fail ("header chunk of " + std::to_string (headerLength) + " bytes");
        if (headerLength > r.left ())
            r.fail ("header chunk claims " + std::to_string (headerLength) + " bytes");
        out = MidiFile {};
        Budget budget;
        out.format = static_cast<int> (r.be (2));
        const std::uint32_t declared = r.be (2);
        const std::uint32_t division = r.be (2);
        r.skip (headerLength - 6);
        if (out.format > 2)
            r.fail ("unknown format " + std::to_string (out.format));
        if (division & 0x8000)
        {
            out.division = static_cast<std::int8_t> (division >> 8);  // negative frames per second
            out.ticksPerFrame = static_cast<int> (division & 0xFF);
            if (out.division != -24 && out.division != -25 && out.division != -29 && out.division != -30)
                r.fail ("unknown SMPTE frame rate " + std::to_string (-out.division));
            if (out.ticksPerFrame == 0)
                r.fail ("zero ticks per frame");
        }
        else
        {
            out.division = static_cast<int> (division);
            if (out.division == 0)
                r.fail ("zero ticks per quarter note");
        }

        while (!r.atEnd ())
        {
            if (r.left () < 8)
                r.fail ("truncated chunk header");
            const std::string id = r.bytes (4);
            std::uint32_t length = r.be (4);
            const bool cut = length > r.left ();
            if (cut && (id != "MTrk" || length - r.left () > MidiLimits::overrun))
                r.fail ("chunk '" + id + "' claims " + std::to_string (length) + " bytes, only "
                        + std::to_string (r.left ()) + " left");
            const int index = static_cast<int> (out.tracks.size ());
            if (cut)
            {
                out.repairs.push_back ({index, 0, false, "the track's chunk claims " + std::to_string (length)
                                                      + " bytes, but the file ends " + std::to_string (length - r.left ())
                                                      + " bytes sooner; read to the end of the file"});
                length = static_cast<std::uint32_t> (r.left ());
            }
            const std::uint8_t* body = data + r.offset ();
            r.skip (length);
            if (id == "MTrk")
                out.tracks.push_back (parseTrack (body, length, index, cut, budget, out.repairs));
        }
        if (out.tracks.empty ())
        {
            error = "no track chunk in the file";
            return false;
        }
        (void) declared;  // a count that disagrees with the chunks found is common and harmless
        return true;
    }
    catch (const ParseError& e)
    {
        error = e.what ();
        return false;
    }
}

std::vector<std::uint8_t> writeMidi (const MidiFile& file)
{
    std::vector<std::uint8_t> out;
    const std::uint8_t head[] = {'M', 'T', 'h', 'd', 0, 0, 0, 6};
    out.insert (out.end (), head, head + sizeof head);
    put (out, static_cast<std::uint32_t> (file.format), 2);
    put (out, static_cast<std::uint32_t> (file.tracks.size ()), 2);
    if (file.division < 0)
        put (out, (static_cast<std::uint32_t> (static_cast<std::uint8_t> (file.division)) << 8)
                      | static_cast<std::uint32_t> (file.ticksPerFrame),
             2);
    else
        put (out, static_cast<std::uint32_t> (file.division), 2);

    for (const MidiTrack& track : file.tracks)
    {
        std::vector<MidiEvent> events = track.events;
        std::stable_sort (events.begin (), events.end (),
                          [] (const MidiEvent& a, const MidiEvent& b) { return a.tick < b.tick; });
        std::vector<std::uint8_t> body;
        std::uint64_t tick = 0;
        for (const MidiEvent& e : events)
        {
            if (e.kind == MidiEvent::Other)
                continue;
            putVarlen (body, static_cast<std::uint32_t> (e.tick - tick));
            tick = e.tick;
            auto meta = [&] (std::uint8_t type, const std::string& payload) {
                body.push_back (0xFF);
                body.push_back (type);
                putVarlen (body, static_cast<std::uint32_t> (payload.size ()));
                body.insert (body.end (), payload.begin (), payload.end ());
            };
            switch (e.kind)
            {
            case MidiEvent::NoteOn:
            case MidiEvent::NoteOff:
                body.push_back (static_cast<std::uint8_t> ((e.kind == MidiEvent::NoteOn ? 0x90 : 0x80) | (e.channel & 0x0F)));
                body.push_back (static_cast<std::uint8_t> (e.pitch & 0x7F));
                body.push_back (static_cast<std::uint8_t> (e.velocity & 0x7F));
                break;
            case MidiEvent::Tempo:
                meta (0x51, std::string {char (e.value >> 16), char (e.value >> 8), char (e.value)});
                break;
            case MidiEvent::Lyric: meta (0x05, e.text); break;
            case MidiEvent::Text: meta (0x01, e.text); break;
            case MidiEvent::TrackName: meta (0x03, e.text); break;
            case MidiEvent::TimeSignature:
            {
                int power = 0;
                while (power < 6 && (1u << power) < (e.value & 0xFF))
                    ++power;
                // 24 clocks a metronome click, 8 thirty-seconds a quarter: the usual values.
                meta (0x58, std::string {char ((e.value >> 8) & 0xFF), char (power), 24, 8});
                break;
            }
            case MidiEvent::Other: break;
            }
        }
        body.push_back (0);
        body.push_back (0xFF);
        body.push_back (0x2F);
        body.push_back (0);
        const std::uint8_t id[] = {'M', 'T', 'r', 'k'};
        out.insert (out.end (), id, id + 4);
        put (out, static_cast<std::uint32_t> (body.size ()), 4);
        out.insert (out.end (), body.begin (), body.end ());
    }
    return out;
}

} // namespace Score
