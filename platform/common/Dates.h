#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Regional.h"
#include "platform/common/Region.h"

namespace platform {

/// A part of a date picture: a run of one letter, or a text.
struct DateField {
  char Letter;  ///< 0 for a text.
  std::size_t Length;
  std::string Text;
};

using DatePicture = std::vector<DateField>;

/// The forms in which a region writes and reads dates.
class DateForms {
 public:
  DateForms(Region region, FoldCharacter fold);

  /// In the contract's general form; empty for what is no date.
  std::string General(const SYSTEMTIME& date) const;

  /// A date, with or without time, year first or in the regional order, letters in any case.
  std::optional<SYSTEMTIME> Read(std::string_view text) const;

 private:
  Region region_;
  Region folded_;  ///< The names that are read.
  FoldCharacter fold_;
  DatePicture general_;
  std::vector<DatePicture> readable_;  ///< The first that a text fits tells what it means.
};

}  // namespace platform
