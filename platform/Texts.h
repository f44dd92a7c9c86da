#pragma once

#include <string>
#include <string_view>

// Texts that read alike in every region and on every machine. All text is UTF-8.

namespace platform {

/// The text without the blanks around it.
std::string_view Trimmed(std::string_view text, std::string_view blanks = " ");

/// The number that a text begins with: blanks, a sign, digits with a "." and decimals, an exponent;
/// 0 if there is none. One too large for a double is infinite, one too small 0.
double LeadingNumber(std::string_view text);

/// Bytes as one line that can be shown: control characters and line breaks become their pictures,
/// and what is not UTF-8 becomes U+FFFD.
std::string OneLine(std::string_view bytes);

/// The same for a text of several lines: their ends are kept, each as LF, and so are tabs.
std::string ManyLines(std::string_view bytes);

}  // namespace platform
