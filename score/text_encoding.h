// Texts from files of other programs, made fit to type: UTF-8, trimmed.
#pragma once

#include <string>
#include <vector>

namespace Score {

/** Text as UTF-8: valid UTF-8 is kept, anything else is read as Latin-1. */
std::string toUtf8 (const std::string& bytes);

/** Without blanks, tabs and line ends at either end. */
std::string trimBlanks (const std::string& s);

bool isUtf8 (const std::string& bytes);

/**
 * How the texts of one file that are not UTF-8 were written. Old files carry
 * no mark of it: Japanese ones are Shift-JIS (as Windows extends it), Western
 * ones Latin-1 (as Windows extends it).
 */
enum class TextEncoding
{
    Utf8,
    ShiftJis,
    Latin1
};

/**
 * The encoding that reads a file's texts best: UTF-8 when every one is;
 * Shift-JIS when those that aren't hold kana or Japanese punctuation (a
 * quarter of their double-byte characters at least) and hardly any byte that
 * Shift-JIS can't read; Latin-1 otherwise, which reads any byte.
 */
TextEncoding guessEncoding (const std::vector<const std::string*>& texts);

/**
 * A text as UTF-8: kept when it is UTF-8 already, else read in `encoding`.
 * Bytes that can't be read become U+FFFD and are counted in `unreadable`.
 */
std::string decodeText (const std::string& bytes, TextEncoding encoding, std::size_t& unreadable);

const char* encodingName (TextEncoding encoding);

} // namespace Score
