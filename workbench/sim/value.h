// An attribute value or a note text on its own, as tests write and read them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace Sim {

/** Integer, float, narrow or wide string: what a host keeps for a key. */
class Value
{
public:
    Value () = default;
    Value (int64_t i) : data_ (i) {}
    Value (double f) : data_ (f) {}
    Value (std::u16string s) : data_ (std::move (s)) {}
    static Value narrow (std::string s);
    /** UTF-8 in, UTF-16 stored: the usual way a test writes a lyric. */
    static Value text (const std::string& utf8);

    bool isEmpty () const { return data_.index () == 0; }
    bool isInt () const { return data_.index () == 1; }
    bool isFloat () const { return data_.index () == 2; }
    bool isWide () const { return data_.index () == 3; }
    bool isNarrow () const { return data_.index () == 4; }

    int64_t asInt () const { return isInt () ? std::get<1> (data_) : 0; }
    double asFloat () const { return isFloat () ? std::get<2> (data_) : 0.0; }
    const std::u16string& asWide () const;
    const std::string& asNarrow () const;
    /** Readable form for reports and comparisons: UTF-8 text or the number. */
    std::string toString () const;

    bool operator== (const Value& other) const { return data_ == other.data_; }
    bool operator!= (const Value& other) const { return !(*this == other); }

private:
    std::variant<std::monostate, int64_t, double, std::u16string, std::string> data_;
};

} // namespace Sim
