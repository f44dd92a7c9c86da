#include "platform/common/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

#include "platform/Texts.h"

namespace platform {
namespace {

/// What a number mask asks for.
struct NumberMask {
  explicit NumberMask(std::string_view mask) {
    const std::size_t point = mask.find('.');
    const std::string_view whole = mask.substr(0, point);
    LeastDigits = static_cast<std::size_t>(std::count(whole.begin(), whole.end(), '0'));
    Grouped = whole.find(',') != std::string_view::npos;
    HasPoint = point != std::string_view::npos;
    Decimals = HasPoint ? static_cast<int>(mask.size() - point - 1) : 0;
  }
  std::size_t LeastDigits;
  bool Grouped;
  bool HasPoint;
  int Decimals;
};

void AppendGrouped(std::string& text, std::string_view digits, std::string_view separator) {
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += separator;
    text += digits[i];
  }
}

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// Reads one number text from front to end.
class NumberReader {
 public:
  NumberReader(std::string_view text, const Region& region)
      : region_(region), rest_(Trimmed(text, " \t")) {}

  std::optional<double> Read() {
    if (rest_.starts_with('-')) plain_ += '-';
    if (rest_.starts_with('-') || rest_.starts_with('+')) rest_.remove_prefix(1);
    std::size_t digits = TakeDigits(region_.Group);
    if (TakeText(region_.Decimal)) {
      plain_ += '.';
      digits += TakeDigits({});
    }
    if (digits == 0 || !TakeExponent() || !rest_.empty()) return std::nullopt;
    const double value = LeadingNumber(plain_);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
  }

 private:
  bool TakeText(std::string_view text) {
    if (text.empty() || !rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  /// Digits, and between two of them a group separator.
  std::size_t TakeDigits(std::string_view separator) {
    std::size_t count = 0;
    for (;;) {
      const auto end = std::find_if_not(rest_.begin(), rest_.end(), IsDigit);
      const auto run = static_cast<std::size_t>(end - rest_.begin());
      plain_.append(rest_, 0, run);
      rest_.remove_prefix(run);
      count += run;
      const std::string_view before = rest_;
      if (count == 0 || !TakeText(separator)) return count;
      if (rest_.empty() || !IsDigit(rest_.front())) {
        rest_ = before;
        return count;
      }
    }
  }

  bool TakeExponent() {
    if (!rest_.starts_with('e') && !rest_.starts_with('E')) return true;
    rest_.remove_prefix(1);
    plain_ += 'e';
    if (rest_.starts_with('-')) plain_ += '-';
    if (rest_.starts_with('-') || rest_.starts_with('+')) rest_.remove_prefix(1);
    return TakeDigits({}) > 0;
  }

  const Region& region_;
  std::string_view rest_;
  std::string plain_;  ///< The same number as `LeadingNumber` reads it.
};

}  // namespace

std::string NumberText(double number, std::string_view mask, const Region& region) {
  constexpr double WholeLimit = 9e18;
  const NumberMask wanted(mask);
  const double size = std::fabs(number);
  std::array<char, 512> buffer;
  char* const end = buffer.data() + buffer.size();
  const bool whole = size < WholeLimit && size == std::floor(size);
  const auto written =
      whole ? std::to_chars(buffer.data(), end, static_cast<std::uint64_t>(size))
            : std::to_chars(buffer.data(), end, size, std::chars_format::fixed, wanted.Decimals);
  if (!std::isfinite(number) || written.ec != std::errc()) return {};
  const std::string_view all(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
  std::string digits(all.substr(0, all.find('.')));
  std::string decimals(all.substr(std::min(digits.size() + 1, all.size())));
  decimals.resize(static_cast<std::size_t>(wanted.Decimals), '0');
  const bool zero = all.find_first_not_of("0.") == std::string_view::npos;
  if (digits == "0") digits.clear();
  if (digits.size() < wanted.LeastDigits) digits.insert(0, wanted.LeastDigits - digits.size(), '0');

  std::string text;
  if (number < 0 && !zero) text += '-';
  AppendGrouped(text, digits, wanted.Grouped ? std::string_view(region.Group) : "");
  if (wanted.HasPoint) text += region.Decimal + decimals;
  return text;
}

std::optional<double> ReadNumber(std::string_view text, const Region& region) {
  return NumberReader(text, region).Read();
}

}  // namespace platform
