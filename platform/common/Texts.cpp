#include "platform/Texts.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

#include "platform/common/Utf8.h"

namespace platform {
namespace {

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// Whether a number that no double can hold is too large for it and not too small.
bool IsHuge(std::string_view number) {
  const std::size_t end = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, end);
  std::string_view exponent = number.substr(std::min(end + 1, number.size()));
  if (exponent.starts_with('+')) exponent.remove_prefix(1);
  std::int64_t tens = 0;
  const auto read = std::from_chars(exponent.data(), exponent.data() + exponent.size(), tens);
  if (read.ec == std::errc::result_out_of_range) return !exponent.starts_with('-');
  const auto first = static_cast<std::int64_t>(digits.find_first_of("123456789"));
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  return point - first + tens > 0;
}

constexpr char32_t Delete = 0x7F;
constexpr char32_t NextLine = 0x85;
constexpr char32_t FirstPicture = 0x2400;
constexpr char32_t DeletePicture = 0x2421;
constexpr char32_t NewLinePicture = 0x2424;
constexpr char32_t Replacement = 0xFFFD;

bool EndsLine(char32_t character) {
  return character == NextLine || character == 0x2028 || character == 0x2029;
}

/// What stands for a character that would do something instead of being seen.
char32_t Shown(char32_t character) {
  if (character < U' ') return FirstPicture + character;
  if (character == Delete) return DeletePicture;
  if (EndsLine(character)) return NewLinePicture;
  // No characters: a toolkit's documents may mark the ends of a part with them.
  const bool marks = character >= 0xFDD0 && character <= 0xFDEF;
  return (character > Delete && character < 0xA0) || marks ? Replacement : character;
}

bool IsPlain(char byte) { return byte >= ' ' && byte < static_cast<char>(Delete); }

/// Adds the head of a text that is not empty as it is shown; returns its length in bytes.
std::size_t AppendShown(std::string& shown, std::string_view text) {
  char32_t character = 0;
  const std::size_t length = ReadUtf8(text, character);
  AppendUtf8(shown, length == 0 ? Replacement : Shown(character));
  return std::max<std::size_t>(length, 1);
}

}  // namespace

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const auto isBlank = [blanks](char letter) {
    return std::find(blanks.begin(), blanks.end(), letter) != blanks.end();
  };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

double LeadingNumber(std::string_view text) {
  while (text.starts_with(' ') || text.starts_with('\t')) text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::size_t digit = text.starts_with('.') ? 1 : 0;
  if (digit >= text.size() || !IsDigit(text[digit])) return 0;

  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) {
    number = IsHuge(text.substr(0, static_cast<std::size_t>(end - text.data())))
                 ? std::numeric_limits<double>::infinity()
                 : 0;
  }
  return negative ? -number : number;
}

std::string OneLine(std::string_view bytes) {
  std::string line;
  line.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto plain = std::find_if_not(bytes.begin(), bytes.end(), IsPlain);
    line.append(bytes.begin(), plain);
    bytes.remove_prefix(static_cast<std::size_t>(plain - bytes.begin()));
    if (!bytes.empty()) bytes.remove_prefix(AppendShown(line, bytes));
  }
  return line;
}

std::string ManyLines(std::string_view bytes) {
  std::string lines;
  lines.reserve(bytes.size());
  while (!bytes.empty()) {
    if (bytes.starts_with("\r\n")) bytes.remove_prefix(1);
    if (bytes.front() == '\r' || bytes.front() == '\n') {
      lines += '\n';
      bytes.remove_prefix(1);
    } else if (IsPlain(bytes.front()) || bytes.front() == '\t') {
      lines += bytes.front();
      bytes.remove_prefix(1);
    } else {
      bytes.remove_prefix(AppendShown(lines, bytes));
    }
  }
  return lines;
}

}  // namespace platform
