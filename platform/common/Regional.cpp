// The contract's regional texts, made of what the machine tells of the user's region. Built into
// the library of each machine's services, which tell it.

#include "platform/Regional.h"

#include "platform/common/Dates.h"
#include "platform/common/Folding.h"
#include "platform/common/Numbers.h"
#include "platform/common/Region.h"
#include "platform/common/Utf8.h"

namespace platform {
namespace {

const DateForms& UserDates() {
  static const DateForms forms(UserRegion(), FoldedCharacter);
  return forms;
}

}  // namespace

std::string Format(double number, std::string_view mask) {
  return NumberText(number, mask, UserRegion());
}

std::string GeneralDate(const SYSTEMTIME& date) { return UserDates().General(date); }

bool IsNumeric(std::string_view text) { return ReadNumber(text, UserRegion()).has_value(); }

double CDbl(std::string_view text) { return ReadNumber(text, UserRegion()).value_or(0); }

bool CDate(std::string_view text, SYSTEMTIME& date) {
  const std::optional<SYSTEMTIME> read = UserDates().Read(text);
  if (read) date = *read;
  return read.has_value();
}

std::string FoldCase(std::string_view text) { return Folded(text, FoldedCharacter); }

TextSearch::TextSearch(std::string_view wanted) : folded_(FoldCase(wanted)) {}

bool TextSearch::OccursIn(std::string_view text) const {
  return OccursFolded(folded_, text, FoldedCharacter);
}

std::string TextFromCodePage(std::string bytes) {
  if (IsUtf8(bytes)) return bytes;
  return TextFromOldCodePage(bytes);
}

}  // namespace platform
