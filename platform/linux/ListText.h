#pragma once

#include <string_view>

#include <QString>

namespace platform {

// `OneLine` and `ManyLines` as texts of the toolkit's.
QString DisplayText(std::string_view bytes);
QString DisplayLines(std::string_view bytes);

}  // namespace platform
