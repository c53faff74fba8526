// Texts from files of other programs, made fit to type: UTF-8, trimmed.
#pragma once

#include <string>

namespace Score {

/** Text as UTF-8: valid UTF-8 is kept, anything else is read as Latin-1. */
std::string toUtf8 (const std::string& bytes);

/** Without blanks, tabs and line ends at either end. */
std::string trimBlanks (const std::string& s);

} // namespace Score
