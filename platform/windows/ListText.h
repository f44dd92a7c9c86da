#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Bytes as one line that can be shown: what is not UTF-8 becomes U+FFFD, and control characters
/// and line breaks become their pictures.
std::wstring DisplayText(std::string_view bytes);

/// The same for a text of several lines: their ends are kept, each as CR LF, and so are tabs.
std::wstring DisplayLines(std::string_view bytes);

}  // namespace platform
