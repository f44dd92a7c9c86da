#pragma once

#include <string>

#include "platform/common/Region.h"

namespace platform {

/// What the system tells of a region by its name, as "de-DE"; null names the user's own.
Region RegionNamed(const wchar_t* name);

}  // namespace platform
