#pragma once

#include <string_view>

#include <QString>

namespace platform {

/// Bytes as one line that can be shown: what is not UTF-8 becomes U+FFFD, and control characters
/// and line breaks become their pictures.
QString DisplayText(std::string_view bytes);

/// The same for a text of several lines: their ends are kept, each as LF, and so are tabs.
QString DisplayLines(std::string_view bytes);

}  // namespace platform
