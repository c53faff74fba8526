#include "voice/song_json.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <stdexcept>

namespace Voice {

namespace {

using Json = nlohmann::json;

[[noreturn]] void fail (const std::string& where, const std::string& what)
{
    throw std::invalid_argument (where.empty () ? what : where + ": " + what);
}

double number (const Json& note, const char* key, const std::string& where, double lowest, double highest)
{
    const auto it = note.find (key);
    if (it == note.end () || !it->is_number ())
        fail (where, std::string ("\"") + key + "\" must be a number");
    const double value = it->get<double> ();
    if (!std::isfinite (value) || value < lowest || value > highest)
        fail (where, std::string ("\"") + key + "\" is " + it->dump () + ", outside " + std::to_string (lowest)
                         + " to " + std::to_string (highest));
    return value;
}

bool flag (const Json& note, const char* key, const std::string& where)
{
    const auto it = note.find (key);
    if (it == note.end () || it->is_null ())
        return false;
    if (!it->is_boolean ())
        fail (where, std::string ("\"") + key + "\" must be true or false");
    return it->get<bool> ();
}

NoteKind kindOf (const Json& note, const std::string& where)
{
    const auto it = note.find ("kind");
    if (it == note.end ())
        return flag (note, "rest", where) ? NoteKind::rest
               : flag (note, "continuation", where) ? NoteKind::continuation : NoteKind::note;
    const std::string kind = it->is_string () ? it->get<std::string> () : std::string ();
    if (kind == "note")
        return NoteKind::note;
    if (kind == "cont" || kind == "continuation")
        return NoteKind::continuation;
    if (kind == "rest")
        return NoteKind::rest;
    fail (where, "\"kind\" must be \"note\", \"cont\" or \"rest\"");
}

std::vector<std::string> phonemesOf (const Json& note, const std::string& where)
{
    std::vector<std::string> out;
    const auto it = note.find ("phonemes");
    if (it == note.end () || it->is_null ())
        return out;
    const auto addWords = [&] (const std::string& text)
    {
        std::string word;
        for (char c : text + " ")
            if (c == ' ' || c == '\t')
            {
                if (!word.empty ())
                    out.push_back (word);
                word.clear ();
            }
            else
                word += c;
    };
    if (it->is_string ())
        addWords (it->get<std::string> ());
    else if (it->is_array ())
        for (const auto& token : *it)
        {
            if (!token.is_string ())
                fail (where, "\"phonemes\" must hold strings");
            addWords (token.get<std::string> ());
        }
    else
        fail (where, "\"phonemes\" must be a list of strings or one string");
    return out;
}

Note noteOf (const Json& item, const std::string& where)
{
    if (!item.is_object ())
        fail (where, "a note must be an object");
    Note note;
    note.start = number (item, "start", where, 0.0, longestSong);
    note.end = number (item, "end", where, 0.0, longestSong);
    if (note.end < note.start)
        fail (where, "\"end\" is before \"start\"");
    note.kind = kindOf (item, where);
    if (item.contains ("midi"))
        note.midi = number (item, "midi", where, 0.0, 127.0);
    else if (item.contains ("cents"))
        note.midi = 69.0 + number (item, "cents", where, -6900.0, 5800.0) / 100.0;
    else if (note.kind != NoteKind::rest)
        fail (where, "a sung note needs \"midi\" or \"cents\"");
    note.phonemes = phonemesOf (item, where);
    return note;
}

} // namespace

SongInput readSongJson (const std::string& text, int synthesiser)
{
    Json doc;
    try
    {
        doc = Json::parse (text);
    }
    catch (const Json::exception& e)
    {
        // "[json.exception.parse_error.101] parse error at line 2, column 5: ..." without the tag
        const std::string what = e.what ();
        const auto tag = what.find ("] ");
        fail ("", tag == std::string::npos ? what : what.substr (tag + 2));
    }
    if (!doc.is_object ())
        fail ("", "the song must be a JSON object with \"notes\"");
    const Json* notes = nullptr;
    std::string prefix;
    if (const auto synths = doc.find ("synthesisers"); synths != doc.end () && !doc.contains ("notes"))
    {
        if (!synths->is_array () || synthesiser < 1 || static_cast<std::size_t> (synthesiser) > synths->size ())
            fail ("", "the report has no synthesiser " + std::to_string (synthesiser));
        const Json& synth = (*synths)[static_cast<std::size_t> (synthesiser - 1)];
        if (synth.is_object () && synth.contains ("notes"))
            notes = &synth["notes"];
        prefix = "synthesiser " + std::to_string (synthesiser) + ", ";
    }
    else if (doc.contains ("notes"))
        notes = &doc["notes"];
    if (notes == nullptr || !notes->is_array ())
        fail ("", "\"notes\" must be a list");

    SongInput song;
    if (doc.contains ("duration"))
        song.duration = number (doc, "duration", "", 0.0, longestSong);
    for (std::size_t i = 0; i < notes->size (); ++i)
        song.notes.push_back (noteOf ((*notes)[i], prefix + "note " + std::to_string (i + 1)));
    return song;
}

} // namespace Voice
