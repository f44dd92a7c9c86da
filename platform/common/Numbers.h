#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/common/Region.h"

namespace platform {

/// A number by a mask, as the contract's `Format` has it.
std::string NumberText(double number, std::string_view mask, const Region& region);

/// The number that a whole text stands for, by the rules of `IsNumeric`.
std::optional<double> ReadNumber(std::string_view text, const Region& region);

}  // namespace platform
