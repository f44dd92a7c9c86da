#include "platform/windows/System.h"

#include <algorithm>
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "platform/common/Dates.h"
#include "platform/windows/Region.h"
#include "platform/windows/Text.h"

namespace {

/// The texts that the system itself makes.
std::string OfSystem(const wchar_t* region, const ::SYSTEMTIME& date) {
  std::array<wchar_t, 256> text{};
  const int size = static_cast<int>(text.size());
  GetDateFormatEx(region, DATE_SHORTDATE, &date, nullptr, text.data(), size, nullptr);
  std::wstring all = text.data();
  GetTimeFormatEx(region, 0, &date, nullptr, text.data(), size);
  all.append(L" ").append(text.data());
  for (const wchar_t blank : {L'\u00A0', L'\u202F'})
    std::replace(all.begin(), all.end(), blank, L' ');
  return platform::Narrow(all);
}

int compared = 0;

BOOL CALLBACK Compare(LPWSTR name, DWORD, LPARAM) {
  const platform::Region region = platform::RegionNamed(name);
  const platform::DateForms forms(region, platform::FoldedCharacter);
  // The contract's form has the year in four digits, and reads month before day behind it.
  const bool alike = region.ShortDate.find("yyyy") != std::string::npos;
  if (!alike || region.ShortDate.starts_with("yyyy-d")) return TRUE;
  const std::string text = forms.General({2004, 5, 1, 14, 30, 45});
  const ::SYSTEMTIME date{2004, 5, 6, 1, 14, 30, 45, 0};
  EXPECT_EQ(text, OfSystem(name, date)) << platform::Narrow(name);
  const auto read = forms.Read(text);
  EXPECT_TRUE(read && forms.General(*read) == text) << platform::Narrow(name);
  ++compared;
  return TRUE;
}

}  // namespace

TEST(WindowsRegion, WritesDatesAsTheSystemDoesAndReadsThem) {
  EnumSystemLocalesEx(Compare, LOCALE_ALL, 0, nullptr);
  EXPECT_GT(compared, 50);
}
