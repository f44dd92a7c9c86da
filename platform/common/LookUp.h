#pragma once

#include <string>
#include <vector>

namespace platform {

/// All names that a look-up finds. Each machine tells them; platform/common/LookUp.cpp hands them
/// out by the contract's `Dir`.
std::vector<std::string> NamesThatFit(const std::string& pattern, int attributes);

}  // namespace platform
