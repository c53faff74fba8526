#include "workbench/sim/value.h"

#include "workbench/sim/text.h"

#include <cstring>

namespace Sim {

using Steinberg::FVariant;

Value Value::narrow (std::string s)
{
    Value v;
    v.data_ = std::move (s);
    return v;
}

Value Value::text (const std::string& utf8)
{
    return Value (toU16 (utf8));
}

const std::u16string& Value::asWide () const
{
    static const std::u16string empty;
    return isWide () ? std::get<3> (data_) : empty;
}

const std::string& Value::asNarrow () const
{
    static const std::string empty;
    return isNarrow () ? std::get<4> (data_) : empty;
}

std::string Value::toString () const
{
    switch (data_.index ())
    {
        case 1: return std::to_string (std::get<1> (data_));
        case 2: return std::to_string (std::get<2> (data_));
        case 3: return toU8 (std::get<3> (data_));
        case 4: return std::get<4> (data_);
        default: return {};
    }
}

Value Value::fromVariant (const FVariant& v)
{
    const auto type = v.type;
    if (type & FVariant::kInteger)
        return Value (static_cast<int64_t> (v.intValue));
    if (type & FVariant::kFloat)
        return Value (v.floatValue);
    if (type & FVariant::kString16)
        return v.string16 ? Value (fromUnits (v.string16)) : Value (std::u16string ());
    if (type & FVariant::kString8)
        return narrow (v.string8 ? std::string (v.string8) : std::string ());
    return {};
}

void Value::toVariant (FVariant& out, bool borrowed) const
{
    out.empty ();
    switch (data_.index ())
    {
        case 1: out.setInt (std::get<1> (data_)); break;
        case 2: out.setFloat (std::get<2> (data_)); break;
        case 3:
            if (borrowed)
                out.setString16 (units (std::get<3> (data_)));
            else
            {
                out.setString16 (newString16 (std::get<3> (data_)));
                out.setOwner (true);
            }
            break;
        case 4:
        {
            const auto& s = std::get<4> (data_);
            if (borrowed)
                out.setString8 (s.c_str ());
            else
            {
                auto* copy = new char[s.size () + 1];
                std::memcpy (copy, s.c_str (), s.size () + 1);
                out.setString8 (copy);
                out.setOwner (true);
            }
            break;
        }
        default: break;
    }
}

} // namespace Sim
