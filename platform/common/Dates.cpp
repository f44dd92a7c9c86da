#include "platform/common/Dates.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <span>
#include <utility>

#include "platform/Texts.h"
#include "platform/common/Folding.h"
#include "platform/common/Utf8.h"

namespace platform {
namespace {

using Calendar = std::chrono::year_month_day;

// --- Pictures ------------------------------------------------------------------------------------

bool IsBlank(char32_t character) {
  return (character >= '\t' && character <= '\r') || character == ' ' || character == 0x85 ||
         character == 0xA0 || character == 0x1680 || (character >= 0x2000 && character <= 0x200A) ||
         character == 0x2028 || character == 0x2029 || character == 0x202F || character == 0x205F ||
         character == 0x3000;
}

/// Some regions have other blanks than the plain one, also inside of their words. Every run of
/// them becomes a plain one; those around the text go.
std::string WithPlainBlanks(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    char32_t character = 0;
    const std::size_t length = std::max<std::size_t>(ReadUtf8(text, character), 1);
    if (!IsBlank(character)) {
      plain.append(text, 0, length);
    } else if (!plain.ends_with(' ')) {
      plain += ' ';
    }
    text.remove_prefix(length);
  }
  return std::string(Trimmed(plain));
}

void AppendText(DatePicture& picture, char letter) {
  if (picture.empty() || picture.back().Letter != 0) picture.push_back({0, 0, {}});
  picture.back().Text += letter;
}

DatePicture Parsed(std::string_view text) {
  constexpr std::string_view Letters = "dMyhHmst";
  DatePicture picture;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t end = std::min(text.find_first_not_of(text[i], i), text.size());
    if (text.substr(i, 2) == "''") {
      AppendText(picture, '\'');
      i += 2;
    } else if (text[i] == '\'') {
      quoted = !quoted;
      ++i;
    } else if (quoted || Letters.find(text[i]) == std::string_view::npos) {
      AppendText(picture, text[i++]);
    } else {
      picture.push_back({text[i], end - i, {}});
      i = end;
    }
  }
  return picture;
}

DatePicture WithYear(DatePicture picture, std::size_t digits) {
  for (DateField& field : picture) {
    if (field.Letter == 'y') field.Length = digits;
  }
  return picture;
}

/// A time whose half of the day nobody tells has the hour of 24.
DatePicture TimePicture(std::string_view text) {
  DatePicture picture = Parsed(text);
  const auto isHalf = [](const DateField& field) { return field.Letter == 't'; };
  if (std::any_of(picture.begin(), picture.end(), isHalf)) return picture;
  for (DateField& field : picture) {
    if (field.Letter == 'h') field.Letter = 'H';
  }
  return picture;
}

DatePicture Joined(DatePicture date, const DatePicture& time) {
  AppendText(date, ' ');
  date.insert(date.end(), time.begin(), time.end());
  return date;
}

template <typename Change>
void ChangeNames(Region& region, Change change) {
  for (std::string* half : {&region.Morning, &region.Afternoon}) *half = change(*half);
  for (auto* months : {&region.Months, &region.ShortMonths}) {
    for (std::string& name : *months) name = change(name);
  }
  for (auto* days : {&region.Days, &region.ShortDays}) {
    for (std::string& name : *days) name = change(name);
  }
}

// --- Writing -------------------------------------------------------------------------------------

/// Writes the fields of one date's picture.
class DateWriter {
 public:
  DateWriter(const SYSTEMTIME& date, const Calendar& day, const Region& region)
      : date_(date), weekday_(std::chrono::weekday(day).iso_encoding() - 1), region_(region) {}

  void Write(std::string& text, const DateField& field) const {
    const bool isShort = field.Length == 3;
    const bool isName = field.Length >= 3;
    switch (field.Letter) {
      case 0:
        text += field.Text;
        break;
      case 'd':
        if (!isName) return Number(text, date_.wDay, field.Length);
        text += (isShort ? region_.ShortDays : region_.Days)[weekday_];
        break;
      case 'M':
        if (!isName) return Number(text, date_.wMonth, field.Length);
        text += (isShort ? region_.ShortMonths : region_.Months)[date_.wMonth - 1u];
        break;
      case 't':
        text += date_.wHour < 12 ? region_.Morning : region_.Afternoon;
        break;
      default:
        Number(text, NumberOf(field), field.Length);
    }
  }

 private:
  unsigned NumberOf(const DateField& field) const {
    switch (field.Letter) {
      case 'y':
        return field.Length <= 2 ? date_.wYear % 100u : date_.wYear;
      case 'h':
        return (date_.wHour + 11u) % 12 + 1;
      case 'H':
        return date_.wHour;
      case 'm':
        return date_.wMinute;
      default:
        return date_.wSecond;
    }
  }

  void Number(std::string& text, unsigned number, std::size_t length) const {
    std::string digits = std::to_string(number);
    if (digits.size() < length) digits.insert(0, length - digits.size(), '0');
    for (const char digit : digits) {
      AppendUtf8(text, region_.Zero + static_cast<unsigned char>(digit - '0'));
    }
  }

  const SYSTEMTIME& date_;
  unsigned weekday_;
  const Region& region_;
};

Calendar DayOf(const SYSTEMTIME& date) {
  return {std::chrono::year(date.wYear), std::chrono::month(date.wMonth),
          std::chrono::day(date.wDay)};
}

// --- Reading -------------------------------------------------------------------------------------

/// Reads one folded text by one picture.
class DateReader {
 public:
  DateReader(std::string_view text, const Region& folded) : rest_(text), region_(folded) {}

  std::optional<SYSTEMTIME> Read(const DatePicture& picture) {
    for (const DateField& field : picture) {
      if (!Take(field)) return std::nullopt;
    }
    if (ofTwelve_ && (date_.wHour < 1 || date_.wHour > 12)) return std::nullopt;
    if (ofTwelve_)
      date_.wHour = static_cast<std::uint16_t>(date_.wHour % 12 + (afternoon_ ? 12 : 0));
    const bool isTime = date_.wHour < 24 && date_.wMinute < 60 && date_.wSecond < 60;
    if (!rest_.empty() || date_.wYear == 0 || !DayOf(date_).ok() || !isTime) return std::nullopt;
    return date_;
  }

 private:
  bool Take(const DateField& field) {
    switch (field.Letter) {
      case 0:
        return TakeText(field.Text);
      case 'y':
        return TakeYear(field.Length);
      case 'M':
        return field.Length < 3 ? TakeNumber(date_.wMonth) : TakeMonth(field.Length);
      case 'd':
        if (field.Length < 3) return TakeNumber(date_.wDay);
        return TakeName(field.Length == 3 ? region_.ShortDays : region_.Days).has_value();
      case 'h':
        ofTwelve_ = true;
        return TakeNumber(date_.wHour);
      case 'H':
        return TakeNumber(date_.wHour);
      case 'm':
        return TakeNumber(date_.wMinute);
      case 's':
        return TakeNumber(date_.wSecond);
      default:
        return TakeHalf();
    }
  }

  bool TakeText(std::string_view text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  std::optional<unsigned> TakeDigit() {
    char32_t character = 0;
    const std::size_t length = rest_.empty() ? 0 : ReadUtf8(rest_, character);
    for (const char32_t zero : {U'0', region_.Zero}) {
      if (length == 0 || character < zero || character > zero + 9) continue;
      rest_.remove_prefix(length);
      return static_cast<unsigned>(character - zero);
    }
    return std::nullopt;
  }

  /// Reads digits, `most` at most; returns how many.
  std::size_t TakeDigits(std::uint16_t& number, std::size_t most) {
    number = 0;
    for (std::size_t count = 0; count < most; ++count) {
      const std::optional<unsigned> digit = TakeDigit();
      if (!digit) return count;
      number = static_cast<std::uint16_t>(10 * number + *digit);
    }
    return most;
  }

  bool TakeNumber(std::uint16_t& number) { return TakeDigits(number, 2) > 0; }

  /// A year of two digits lies within 1930 to 2029.
  bool TakeYear(std::size_t digits) {
    if (TakeDigits(date_.wYear, digits) < digits) return false;
    if (digits == 2)
      date_.wYear = static_cast<std::uint16_t>(date_.wYear + (date_.wYear < 30 ? 2000 : 1900));
    return true;
  }

  /// The longest of the names that comes next.
  std::optional<std::size_t> TakeName(std::span<const std::string> names) {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < names.size(); ++i) {
      const bool longer = !found || names[i].size() > names[*found].size();
      if (!names[i].empty() && longer && rest_.starts_with(names[i])) found = i;
    }
    if (found) rest_.remove_prefix(names[*found].size());
    return found;
  }

  bool TakeMonth(std::size_t length) {
    const auto month = TakeName(length == 3 ? region_.ShortMonths : region_.Months);
    if (month) date_.wMonth = static_cast<std::uint16_t>(*month + 1);
    return month.has_value();
  }

  bool TakeHalf() {
    const std::array<std::string, 2> halves = {region_.Morning, region_.Afternoon};
    const auto half = TakeName(halves);
    afternoon_ = half == 1u;
    return half.has_value();
  }

  std::string_view rest_;
  const Region& region_;
  SYSTEMTIME date_;
  bool ofTwelve_ = false;
  bool afternoon_ = false;
};

}  // namespace

DateForms::DateForms(Region region, FoldCharacter fold) : region_(std::move(region)), fold_(fold) {
  ChangeNames(region_, WithPlainBlanks);
  folded_ = region_;
  ChangeNames(folded_, [fold](const std::string& name) { return Folded(name, fold); });

  const DatePicture date = Parsed(WithPlainBlanks(region_.ShortDate));
  const DatePicture longTime = TimePicture(WithPlainBlanks(region_.LongTime));
  const DatePicture shortTime = TimePicture(WithPlainBlanks(region_.ShortTime));
  general_ = Joined(WithYear(date, 4), longTime);
  for (const DatePicture& day : {Parsed("yyyy-M-d"), WithYear(date, 4), WithYear(date, 2)}) {
    readable_.push_back(day);
    for (const DatePicture& time : {longTime, shortTime, Parsed("H:m:s"), Parsed("H:m")}) {
      readable_.push_back(Joined(day, time));
    }
  }
  for (DatePicture& picture : readable_) {
    for (DateField& field : picture) field.Text = Folded(field.Text, fold);
  }
}

std::string DateForms::General(const SYSTEMTIME& date) const {
  const Calendar day = DayOf(date);
  if (!day.ok()) return {};
  const DateWriter writer(date, day, region_);
  std::string text;
  for (const DateField& field : general_) writer.Write(text, field);
  return std::string(Trimmed(text));
}

std::optional<SYSTEMTIME> DateForms::Read(std::string_view text) const {
  const std::string folded = Folded(WithPlainBlanks(text), fold_);
  for (const DatePicture& picture : readable_) {
    if (const auto date = DateReader(folded, folded_).Read(picture)) return date;
  }
  return std::nullopt;
}

}  // namespace platform
