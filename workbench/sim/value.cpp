#include "workbench/sim/value.h"

#include "workbench/sim/text.h"

namespace Sim {

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

} // namespace Sim
