#include "platform/windows/System.h"

#include "platform/windows/Region.h"

#include <array>
#include <string_view>

#include "platform/common/Utf8.h"
#include "platform/windows/Text.h"

namespace platform {
namespace {

std::wstring Fact(const wchar_t* region, LCTYPE kind) {
  std::array<wchar_t, 256> text{};
  GetLocaleInfoEx(region, kind, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::string Text(const wchar_t* region, LCTYPE kind) { return Narrow(Fact(region, kind)); }

/// A picture of the system's. It has some letters that ours has not: an era, which goes, one letter
/// for the half of the day, and a year with more digits or with one.
std::string Picture(const wchar_t* region, LCTYPE kind) {
  const std::wstring theirs = Fact(region, kind);
  std::wstring picture;
  bool quoted = false;
  for (std::size_t i = 0, length = 0; i < theirs.size(); i += length) {
    const wchar_t letter = theirs[i];
    length = std::min(theirs.find_first_not_of(letter, i), theirs.size()) - i;
    if (letter == L'\'' && length % 2 != 0) quoted = !quoted;
    std::size_t ours = length;
    if (!quoted && letter == L't') ours = 2;
    if (!quoted && letter == L'y') ours = length <= 2 ? 2 : 4;
    if (!quoted && letter == L'g') ours = 0;
    picture.append(ours, letter);
  }
  return Narrow(picture);
}

/// The one that narrow texts had before this process took UTF-8 for its own.
UINT OldCodePage() {
  DWORD page = 0;
  GetLocaleInfoEx(LOCALE_NAME_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                  reinterpret_cast<wchar_t*>(&page), sizeof page / sizeof(wchar_t));
  const bool none = page == CP_ACP || page == CP_UTF8;  // of regions that never had one
  return none ? 1252 : page;
}

/// All characters of one unit with their case changed by `change`.
std::wstring Mapped(const std::wstring& text, DWORD change) {
  std::wstring mapped(text.size(), L'\0');
  LCMapStringEx(LOCALE_NAME_INVARIANT, change, text.data(), static_cast<int>(text.size()),
                mapped.data(), static_cast<int>(mapped.size()), nullptr, nullptr, 0);
  return mapped;
}

/// By way of the large letter, which some small ones share.
std::wstring FoldedUnits(const std::wstring& text) {
  constexpr DWORD EveryLetter = LCMAP_LINGUISTIC_CASING;
  return Mapped(Mapped(text, LCMAP_UPPERCASE | EveryLetter), LCMAP_LOWERCASE | EveryLetter);
}

std::wstring EveryUnit() {
  std::wstring units(0x10000, L'\0');
  for (std::size_t unit = 0; unit < units.size(); ++unit) units[unit] = static_cast<wchar_t>(unit);
  return units;
}

}  // namespace

Region RegionNamed(const wchar_t* name) {
  Region region;
  region.Group = Text(name, LOCALE_STHOUSAND);
  region.Decimal = Text(name, LOCALE_SDECIMAL);
  region.ShortDate = Picture(name, LOCALE_SSHORTDATE);
  region.LongTime = Picture(name, LOCALE_STIMEFORMAT);
  region.ShortTime = Picture(name, LOCALE_SSHORTTIME);
  region.Morning = Text(name, LOCALE_S1159);
  region.Afternoon = Text(name, LOCALE_S2359);
  for (unsigned month = 0; month < 12; ++month) {
    region.Months[month] = Text(name, LOCALE_SMONTHNAME1 + month);
    region.ShortMonths[month] = Text(name, LOCALE_SABBREVMONTHNAME1 + month);
  }
  for (unsigned day = 0; day < 7; ++day) {
    region.Days[day] = Text(name, LOCALE_SDAYNAME1 + day);
    region.ShortDays[day] = Text(name, LOCALE_SABBREVDAYNAME1 + day);
  }
  return region;
}

const Region& UserRegion() {
  static const Region region = RegionNamed(LOCALE_NAME_USER_DEFAULT);
  return region;
}

char32_t FoldedCharacter(char32_t character) {
  static const std::wstring folded = FoldedUnits(EveryUnit());
  const bool turkish = character == U'\u0130' || character == U'\u0131';  // an "i" there alone
  if (turkish) return character;
  if (character < folded.size()) return folded[character];
  std::string text;
  AppendUtf8(text, character);
  text = Narrow(FoldedUnits(Wide(text)));
  return ReadUtf8(text, character) == text.size() ? character : 0;
}

std::string TextFromOldCodePage(std::string_view bytes) {
  const int size = static_cast<int>(bytes.size());
  std::wstring wide(bytes.size(), L'\0');
  const int length = MultiByteToWideChar(OldCodePage(), 0, bytes.data(), size, wide.data(), size);
  wide.resize(static_cast<std::size_t>(length));
  return Narrow(wide);
}

}  // namespace platform
