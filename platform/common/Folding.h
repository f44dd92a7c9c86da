#pragma once

#include <string>
#include <string_view>

#include "platform/common/Region.h"

namespace platform {

/// The text with every character folded; bytes that are not UTF-8 stay as they are.
std::string Folded(std::string_view text, FoldCharacter fold);

/// Whether a folded text occurs in a text, case ignored.
bool OccursFolded(std::string_view folded, std::string_view text, FoldCharacter fold);

}  // namespace platform
