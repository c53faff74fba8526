#include "workbench/sim/text_pool.h"

#include "workbench/sim/text.h"

#include <cstring>

namespace Sim {

using Steinberg::FVariant;

namespace {

/** The pool's one copy of `text`, made on first sight; keyed by a view of that copy, which never moves. */
template <typename Map, typename View>
const typename Map::mapped_type::element_type* intern (Map& pool, View text)
{
    if (auto it = pool.find (text); it != pool.end ())
        return it->second.get ();
    auto owned = std::make_unique<typename Map::mapped_type::element_type> (text);
    const auto* kept = owned.get ();
    pool.emplace (View (*kept), std::move (owned));
    return kept;
}

/**
 * Whether the zero-terminated `text` is `held`, unit for unit, found in one
 * walk; `length` is the text's length either way.
 */
bool sameText (const char16_t* text, const std::u16string& held, std::size_t& length)
{
    const char16_t* t = text;
    const char16_t* h = held.c_str ();
    while (*t != 0 && *t == *h)
    {
        ++t;
        ++h;
    }
    length = static_cast<std::size_t> (t - text);
    if (*t == 0)
        return length == held.size ();
    length += std::char_traits<char16_t>::length (t);
    return false;
}

} // namespace

Value Slot::value () const
{
    switch (type)
    {
        case Int: return Value (i);
        case Float: return Value (f);
        case Wide: return Value (*wide);
        case Narrow: return Value::narrow (*narrow);
        default: return {};
    }
}

void Slot::toVariant (FVariant& out, bool borrowed) const
{
    out.empty ();
    switch (type)
    {
        case Int: out.setInt (i); break;
        case Float: out.setFloat (f); break;
        case Wide:
            if (borrowed)
                out.setString16 (units (*wide));
            else
            {
                out.setString16 (newString16 (*wide));
                out.setOwner (true);
            }
            break;
        case Narrow:
            if (borrowed)
                out.setString8 (narrow->c_str ());
            else
            {
                auto* copy = new char[narrow->size () + 1];
                std::memcpy (copy, narrow->c_str (), narrow->size () + 1);
                out.setString8 (copy);
                out.setOwner (true);
            }
            break;
        default: break;
    }
}

const std::u16string* TextPool::wide (std::u16string_view text) { return intern (wide_, text); }

const std::string* TextPool::narrow (std::string_view text) { return intern (narrow_, text); }

Slot TextPool::hold (const Value& value)
{
    Slot s;
    if (value.isInt ())
    {
        s.type = Slot::Int;
        s.i = value.asInt ();
    }
    else if (value.isFloat ())
    {
        s.type = Slot::Float;
        s.f = value.asFloat ();
    }
    else if (value.isWide ())
    {
        s.type = Slot::Wide;
        s.wide = wide (value.asWide ());
    }
    else if (value.isNarrow ())
    {
        s.type = Slot::Narrow;
        s.narrow = narrow (value.asNarrow ());
    }
    else
        s.type = Slot::Empty;
    return s;
}

Slot TextPool::hold (const FVariant& v, const Slot& current)
{
    Slot s;
    const auto type = v.type;
    if (type & FVariant::kInteger)
    {
        s.type = Slot::Int;
        s.i = static_cast<int64_t> (v.intValue);
    }
    else if (type & FVariant::kFloat)
    {
        s.type = Slot::Float;
        s.f = v.floatValue;
    }
    else if (type & FVariant::kString16)
    {
        const char16_t* text = v.string16 ? reinterpret_cast<const char16_t*> (v.string16) : u"";
        s.type = Slot::Wide;
        std::size_t length = 0;
        if (current.type != Slot::Wide)
            s.wide = wide (text);
        else
            s.wide = sameText (text, *current.wide, length) ? current.wide : wide ({text, length});
    }
    else if (type & FVariant::kString8)
    {
        const std::string_view text = v.string8 ? std::string_view (v.string8) : std::string_view ();
        s.type = Slot::Narrow;
        s.narrow = current.type == Slot::Narrow && *current.narrow == text ? current.narrow : narrow (text);
    }
    else
        s.type = Slot::Empty;
    return s;
}

TextPool& TextPool::unowned ()
{
    static TextPool pool;
    return pool;
}

} // namespace Sim
