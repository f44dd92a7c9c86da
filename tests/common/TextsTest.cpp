#include <gtest/gtest.h>

#include "platform/Regional.h"
#include "platform/Texts.h"
#include "platform/common/CodePage.h"
#include "platform/common/FileTimes.h"

using namespace platform;

TEST(Texts, WhatCannotBeSeenStandsAsItsPicture) {
  EXPECT_EQ(OneLine("plain ä.txt"), "plain ä.txt");
  EXPECT_EQ(OneLine({"a\0\r\n\x7F\t", 6}), "a␀␍␊␡␉");
  EXPECT_EQ(OneLine("\u0080\u0085\u2028\u2029\uFDD0\xFF\xED\xA0\x80"),
            "\uFFFD␤␤␤\uFFFD\uFFFD"
            "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(ManyLines("a\tb\r\nc\rd\n\n\x1B\u2028"), "a\tb\nc\nd\n\n␛␤");
}

TEST(Texts, EveryByteOfTheOldCodePageIsACharacter) {
  EXPECT_EQ(TextFromWindows1252({"a\0\x80\x81\x9F\xE4\xFF", 7}),
            std::string("a\0", 2) + "€\u0081Ÿäÿ");
}

TEST(Texts, MomentsHaveTheirCalendarFields) {
  const auto text = [](std::int64_t seconds, std::int64_t zone) -> std::string {
    SYSTEMTIME fields;
    const std::optional<FILETIME> local = Moved(MomentFrom1970(seconds, 999'999'999), zone);
    if (!local || FileTimeToSystemTime(*local, fields) == 0) return "none";
    return Format(fields, "YYYY-MM-DD HH:MM:SS");
  };
  EXPECT_EQ(text(951'782'399, 3600), "2000-02-29 00:59:59");
  EXPECT_EQ(text(-11'644'473'600, 0), "1601-01-01 00:00:00");
  EXPECT_EQ(text(253'402'300'799, 0), "9999-12-31 23:59:59");
  for (const std::int64_t seconds :
       {INT64_MIN, std::int64_t{-11'644'473'601}, std::int64_t{253'402'300'800}, INT64_MAX}) {
    EXPECT_EQ(text(seconds, 0), "none") << seconds;
  }
  EXPECT_EQ(text(-11'644'473'600, -1), "none");
}
