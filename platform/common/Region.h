#pragma once

#include <array>
#include <string>
#include <string_view>

namespace platform {

/// What there is to know of the user's region. In the pictures of dates and times stand for
///
///   d dd     day of the month, dd with two digits   ddd dddd  day of the week, short and long
///   M MM     month, MM with two digits              MMM MMMM  its name, short and long
///   yy yyyy  year with two digits, with four        h H       hour of 12 and of 24; hh HH
///   m s      minute and second; mm ss               tt        `Morning` or `Afternoon`
///
/// and any other character for itself, as does what stands in single quotes, in which two are one.
struct Region {
  std::string Group;    ///< Divides groups of three digits.
  std::string Decimal;  ///< Divides whole digits from decimals.
  std::string ShortDate;
  std::string LongTime;
  std::string ShortTime;
  std::string Morning;
  std::string Afternoon;
  std::array<std::string, 12> Months;
  std::array<std::string, 12> ShortMonths;
  std::array<std::string, 7> Days;  ///< From Monday on.
  std::array<std::string, 7> ShortDays;
  char32_t Zero = U'0';  ///< The first of the ten digits of dates and times.
};

/// The character that it and all others have in common that differ from it in case alone.
using FoldCharacter = char32_t (*)(char32_t character);

// Each machine tells these three; platform/common/Regional.cpp makes the contract's texts of them.

/// The user's region as it was when it was first asked for.
const Region& UserRegion();

char32_t FoldedCharacter(char32_t character);

/// Bytes that are not UTF-8 as text: by the code page that this machine's texts had before UTF-8.
std::string TextFromOldCodePage(std::string_view bytes);

}  // namespace platform
