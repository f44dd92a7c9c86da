#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/FileSearch.h"

// Regional texts: numbers, dates and comparison as the user's settings have them. All text is
// UTF-8.

namespace platform {

/// A number by a mask of "#" (a digit if there is one), "0" (a digit always), one "," between
/// digits (groups of three, divided by the regional separator) and one "." (the regional decimal
/// separator, followed by the number of decimals to round to).
std::string Format(double number, std::string_view mask);

/// A date by a mask of YYYY, MM, DD, HH, NN, SS in any case of their letters, zero-padded; MM that
/// follows HH is minutes. Every other character stands for itself.
std::string Format(const SYSTEMTIME& date, std::string_view mask);

/// The present local date and time.
SYSTEMTIME Now();

/// Date and time as text in the general form: the regional short date with a four-digit year, a
/// blank, the regional long time without a zone; only plain blanks.
std::string GeneralDate(const SYSTEMTIME& date);

/// Whether the whole text reads as a number: blanks around, a sign, digits with group separators,
/// decimals, an exponent. The empty text is none.
bool IsNumeric(std::string_view text);

/// The number that such a text stands for.
double CDbl(std::string_view text);

/// Reads a date, with or without time, year first or in the regional order. False, with nothing
/// written, for a text that is none.
bool CDate(std::string_view text, SYSTEMTIME& date);

/// The text with the case of its letters folded away: two texts are equal under the text comparison
/// when their folded forms are. Bytes that are not UTF-8 stay as they are.
std::string FoldCase(std::string_view text);

/// Looks for one text in many, case ignored.
class TextSearch {
 public:
  explicit TextSearch(std::string_view wanted);
  bool OccursIn(std::string_view text) const;

 private:
  std::string folded_;
};

/// Bytes of a text file as text: UTF-8 as it stands, anything else by the code page that texts on
/// this machine had before UTF-8. No byte is lost, NUL neither.
std::string TextFromCodePage(std::string bytes);

}  // namespace platform
