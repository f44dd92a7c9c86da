#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/SharedText.h"

// The cookie file: records of nine lines, each line ended by one LF. Records are found by counting
// lines alone, so a stray line shifts every record behind it.

/// Which array `ReadCookieFile` fills.
inline constexpr int TargetCookieRows = 1;
inline constexpr int TargetDetailRows = 2;

/// Reads a file of `CookieDir` into rows that carry the three texts given. TargetCookieRows: the
/// rows follow the last one of `CookieRows`, which already has its blank slot 0. TargetDetailRows:
/// they replace `DetailRows`. A file that is missing, unreadable or without one whole record
/// changes neither.
void ReadCookieFile(const platform::SharedText& FileName, const platform::SharedText& FileSize,
                    const platform::SharedText& Modified, int Target);

/// The pieces of a text between delimiters, empty ones too, as parts of `Text` itself. Behind the
/// last delimiter there is one more piece only if it is not empty. An empty delimiter divides
/// nothing.
std::vector<std::string_view> SplitText(std::string_view Text, std::string_view Delimiter);

/// The local date, "YYYY-MM-DD", of an expiry time's high word as the file has it. A text that
/// begins with no number counts as 0. "-" for what lies outside a signed 32-bit integer, for times
/// that the platform cannot convert (negative ones, or before 1601 in local time) and for years of
/// more than four digits.
std::string ExpireDateText(std::string_view HighWord);
