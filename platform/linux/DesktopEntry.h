#pragma once

#include <optional>
#include <string>
#include <string_view>

// The file in which a desktop is told of a program that it can start. A command is the executable's
// path, unquoted whatever it holds, and arguments divided by blanks.

namespace platform {

/// The whole file; `more` are lines of keys behind the usual ones. The icon is the picture beside
/// the executable that bears its name.
std::string DesktopEntry(const std::string& name, const std::string& command,
                         std::string_view more);

/// A key of the file's main group, as it is stored.
std::optional<std::string> EntryKey(const std::string& content, std::string_view key);

/// The command that the stored key `Exec` stands for.
std::string CommandOf(std::string_view stored);

/// A text as a key stores it.
std::string TextEscaped(std::string_view text);

}  // namespace platform
