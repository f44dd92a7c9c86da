#include "platform/Regional.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>
#include <locale>
#include <optional>
#include <sstream>

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>

#include "platform/common/Utf8.h"

namespace platform {
namespace {

SYSTEMTIME FromQt(const QDate& day, const QTime& time) {
  return {static_cast<std::uint16_t>(day.year()),    static_cast<std::uint16_t>(day.month()),
          static_cast<std::uint16_t>(day.day()),     static_cast<std::uint16_t>(time.hour()),
          static_cast<std::uint16_t>(time.minute()), static_cast<std::uint16_t>(time.second())};
}

/// Applies `change` to what stands outside of quotes in a date or time format.
template <typename Change>
QString ChangeUnquoted(const QString& format, Change change) {
  QStringList parts = format.split(u'\'');
  for (qsizetype i = 0; i < parts.size(); i += 2) change(parts[i]);
  return parts.join(u'\'');
}

QString WithFourDigitYear(const QString& format) {
  return ChangeUnquoted(format, [](QString& part) {
    if (!part.contains(u"yyyy")) part.replace("yy", "yyyy");
  });
}

/// The zone goes together with what set it apart. "B" (part of the day) is not known to the
/// toolkit, which would print the letter.
QString WithoutZone(const QString& format) {
  QString plain = ChangeUnquoted(format, [](QString& part) {
    part.remove(u't');
    part.remove("()");
    part.remove("[]");
    part.replace("B", "AP ");
  });
  plain = plain.simplified();
  while (plain.endsWith(u',')) plain.chop(1);
  return plain;
}

/// The user's settings as they were when the first text was asked for.
struct Settings {
  QLocale Locale = QLocale::system();
  std::string Group = Locale.groupSeparator().toStdString();
  std::string Decimal = Locale.decimalPoint().toStdString();
  QString ShortDate = WithFourDigitYear(Locale.dateFormat(QLocale::ShortFormat));
  QString LongTime = WithoutZone(Locale.timeFormat(QLocale::LongFormat));
};

const Settings& Current() {
  static const Settings settings;
  return settings;
}

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

void AppendGrouped(std::string& text, std::string_view digits, const std::string& separator) {
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += separator;
    text += digits[i];
  }
}

char LowerAscii(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

std::optional<unsigned> DateField(const SYSTEMTIME& date, char field, bool afterHour) {
  switch (field) {
    case 'y':
      return date.wYear;
    case 'm':
      return afterHour ? date.wMinute : date.wMonth;
    case 'd':
      return date.wDay;
    case 'h':
      return date.wHour;
    case 'n':
      return date.wMinute;
    case 's':
      return date.wSecond;
    default:
      return std::nullopt;
  }
}

void WriteDigits(char* at, unsigned number, std::size_t width) {
  for (std::size_t i = width; i-- > 0; number /= 10) at[i] = static_cast<char>('0' + number % 10);
}

/// Reads one number text from front to end.
class NumberReader {
 public:
  explicit NumberReader(std::string_view text) : rest_(text) {
    while (rest_.starts_with(' ') || rest_.starts_with('\t')) rest_.remove_prefix(1);
    while (rest_.ends_with(' ') || rest_.ends_with('\t')) rest_.remove_suffix(1);
  }

  std::optional<double> Read() {
    if (rest_.starts_with('-')) plain_ += '-';
    if (rest_.starts_with('-') || rest_.starts_with('+')) rest_.remove_prefix(1);
    std::size_t digits = TakeDigits(Current().Group);
    if (TakeText(Current().Decimal)) {
      plain_ += '.';
      digits += TakeDigits({});
    }
    if (digits == 0 || !TakeExponent() || !rest_.empty()) return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(plain_.data(), plain_.data() + plain_.size(), value);
    if (error == std::errc()) return value;
    // Too large for a double, or too small and so 0, and from_chars does not say which.
    std::istringstream plain(plain_);
    plain.imbue(std::locale::classic());
    return plain >> value ? std::optional(value) : std::nullopt;
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
      while (!rest_.empty() && IsDigit(rest_.front())) {
        plain_ += rest_.front();
        rest_.remove_prefix(1);
        ++count;
      }
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

  std::string_view rest_;
  std::string plain_;  ///< The same number as the language writes it.
};

/// Reads "YYYY-MM-DD" with or without " HH:MM" or " HH:MM:SS".
std::optional<SYSTEMTIME> YearFirst(std::string_view text) {
  std::array<int, 6> fields{};
  constexpr std::string_view Dividers = "-- ::";
  std::size_t count = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (count < fields.size()) {
    if (at == end || !IsDigit(*at)) return std::nullopt;
    const auto [next, error] = std::from_chars(at, end, fields[count]);
    if (error != std::errc() || (count == 0 && next - at != 4)) return std::nullopt;
    ++count;
    at = next;
    if (at == end || count == fields.size() || *at != Dividers[count - 1]) break;
    ++at;
  }
  const QDate date(fields[0], fields[1], fields[2]);
  const QTime time(fields[3], fields[4], fields[5]);
  if (at != end || count < 3 || count == 4 || !date.isValid() || !time.isValid()) {
    return std::nullopt;
  }
  return FromQt(date, time);
}

/// A year of two digits lies within 1930 to 2029.
QDate InThisAge(const QDate& date, bool twoDigits) {
  return twoDigits && date.year() < 1930 ? date.addYears(100) : date;
}

std::optional<SYSTEMTIME> InRegionalOrder(const QString& text) {
  const QLocale& locale = Current().Locale;
  const QString twoDigitDate = locale.dateFormat(QLocale::ShortFormat);
  const QString shortTime = WithoutZone(locale.timeFormat(QLocale::ShortFormat));
  for (const QString& date : {Current().ShortDate, twoDigitDate}) {
    for (const QString& time :
         {QString(), Current().LongTime, shortTime, QString("H:mm:ss"), QString("H:mm")}) {
      const QString format = (date + u' ' + time).simplified();
      const QDateTime read = locale.toDateTime(text, format);
      if (!read.isValid() || read.date().year() > 9999) continue;
      return FromQt(InThisAge(read.date(), !format.contains(u"yyyy")), read.time());
    }
  }
  return std::nullopt;
}

}  // namespace

std::string Format(double number, std::string_view mask) {
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
  AppendGrouped(text, digits, wanted.Grouped ? Current().Group : std::string());
  if (wanted.HasPoint) text += Current().Decimal + decimals;
  return text;
}

// Writes over a copy of the mask: a thousand rows a millisecond go through here.
std::string Format(const SYSTEMTIME& date, std::string_view mask) {
  std::string text(mask);
  bool afterHour = false;
  for (std::size_t i = 0, width = 0; i < text.size(); i += width) {
    const char field = LowerAscii(text[i]);
    const std::size_t most = field == 'y' ? 4 : 2;
    for (width = 1; width < most && i + width < text.size(); ++width) {
      if (LowerAscii(text[i + width]) != field) break;
    }
    const std::optional<unsigned> value = DateField(date, field, afterHour);
    if (!value || width < most) {
      width = 1;
      continue;
    }
    if (*value > 9999) {
      text.insert(i, 1, '0');
      ++width;
    }
    WriteDigits(&text[i], *value, width);
    afterHour = field == 'h';
  }
  return text;
}

SYSTEMTIME Now() {
  const std::time_t now = std::time(nullptr);
  tzset();
  std::tm local{};
  localtime_r(&now, &local);
  return {static_cast<std::uint16_t>(local.tm_year + 1900),
          static_cast<std::uint16_t>(local.tm_mon + 1),
          static_cast<std::uint16_t>(local.tm_mday),
          static_cast<std::uint16_t>(local.tm_hour),
          static_cast<std::uint16_t>(local.tm_min),
          static_cast<std::uint16_t>(std::min(local.tm_sec, 59))};
}

std::string GeneralDate(const SYSTEMTIME& date) {
  const Settings& settings = Current();
  // Some regions have other blanks than the plain one, also inside of their words.
  const QDate calendarDay(date.wYear, date.wMonth, date.wDay);
  const QTime clock(date.wHour, date.wMinute, date.wSecond);
  const QString day = settings.Locale.toString(calendarDay, settings.ShortDate).simplified();
  const QString time = settings.Locale.toString(clock, settings.LongTime).simplified();
  return (day + u' ' + time).toStdString();
}

bool IsNumeric(std::string_view text) { return NumberReader(text).Read().has_value(); }

double CDbl(std::string_view text) { return NumberReader(text).Read().value_or(0); }

bool CDate(std::string_view text, SYSTEMTIME& date) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  std::optional<SYSTEMTIME> read = YearFirst(text);
  if (!read) {
    const QString plain =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).simplified();
    read = InRegionalOrder(plain);
  }
  if (!read) return false;
  date = *read;
  return true;
}

std::string FoldCase(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  while (!text.empty()) {
    const std::size_t plain = AsciiLength(text);
    const std::size_t before = folded.size();
    folded.append(text, 0, plain);
    std::transform(folded.begin() + static_cast<std::ptrdiff_t>(before), folded.end(),
                   folded.begin() + static_cast<std::ptrdiff_t>(before), LowerAscii);
    text.remove_prefix(plain);
    if (text.empty()) break;
    char32_t character = 0;
    const std::size_t length = ReadUtf8(text, character);
    if (length == 0) {
      folded += text.front();
    } else {
      AppendUtf8(folded, QChar::toCaseFolded(character));
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return folded;
}

TextSearch::TextSearch(std::string_view wanted) : folded_(FoldCase(wanted)) {}

bool TextSearch::OccursIn(std::string_view text) const {
  // Nearly every field is short and plain: folded on the stack, eight or more letters at a time.
  std::array<char, 1024> lower;
  if (text.size() > lower.size()) return FoldCase(text).find(folded_) != std::string::npos;
  unsigned char seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto letter = static_cast<unsigned char>(text[i]);
    seen = static_cast<unsigned char>(seen | letter);
    const bool upper = static_cast<unsigned char>(letter - 'A') < 26;
    lower[i] = static_cast<char>(letter | (upper ? 0x20 : 0));
  }
  if (seen >= 0x80) return FoldCase(text).find(folded_) != std::string::npos;
  return std::string_view(lower.data(), text.size()).find(folded_) != std::string_view::npos;
}

}  // namespace platform
