#include "platform/linux/DesktopEntry.h"

#include <algorithm>

#include "platform/Texts.h"
#include "platform/linux/Paths.h"

// An entry's `Exec` is escaped twice: quoted as an argument for whoever starts it, and the result
// as a text of the file, so that a backslash in a path comes to four.

namespace platform {

std::string TextEscaped(std::string_view text) {
  std::string escaped;
  for (const char letter : text) {
    switch (letter) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\t':
        escaped += "\\t";
        break;
      default:
        escaped += letter;
    }
  }
  // Readers drop a blank that the line ends with.
  if (escaped.ends_with(' ')) escaped.replace(escaped.size() - 1, 1, "\\s");
  return escaped;
}

namespace {

std::string TextUnescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = text[i] == '\\' && i + 1 < text.size() ? text[i + 1] : '\0';
    constexpr std::string_view Letters = "sntr\\";
    constexpr std::string_view Meanings = " \n\t\r\\";
    const std::size_t known = next == '\0' ? std::string_view::npos : Letters.find(next);
    plain += known == std::string_view::npos ? text[i] : Meanings[known];
    if (known != std::string_view::npos) ++i;
  }
  return plain;
}

std::string Quoted(std::string_view argument) {
  std::string quoted = "\"";
  for (const char letter : argument) {
    if (std::string_view("\"`$\\").find(letter) != std::string_view::npos) quoted += '\\';
    quoted += letter;
    if (letter == '%') quoted += '%';  // A single one begins a field code.
  }
  return quoted + '"';
}

std::string QuotedIfNeeded(std::string_view argument) {
  constexpr std::string_view Reserved = " \t\n\r\"'\\><~|&;$*?#()`%";
  return argument.find_first_of(Reserved) == std::string_view::npos ? std::string(argument)
                                                                    : Quoted(argument);
}

// GLib looks for the executable before it has made "%%" one again, and gives up. A shell hands such
// a path on unread, as one of its arguments.
constexpr std::string_view ShellStart = R"(/bin/sh -c "exec \"\$0\" \"\$@\"" )";

/// Where the executable's path ends: it may hold blanks itself, so it reaches as far as a file
/// carries that name.
std::size_t EndOfExecutable(const std::string& command) {
  for (std::size_t end = command.size();; end = command.rfind(' ', end - 1)) {
    if (end == std::string::npos || end == 0) break;
    const std::string path = command.substr(0, end);
    if (IsPath(path) && IsOrdinaryFile(AT_FDCWD, path.c_str())) return end;
  }
  const std::size_t last = command.rfind(' ');
  return last == std::string::npos ? command.size() : last;
}

/// Each argument quoted if needed, the blanks between them as they stand.
std::string QuotedArguments(std::string_view text) {
  std::string quoted;
  while (!text.empty()) {
    const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
    quoted.append(blanks, ' ');
    text.remove_prefix(blanks);
    const std::string_view word = text.substr(0, text.find(' '));
    quoted += QuotedIfNeeded(word);
    text.remove_prefix(word.size());
  }
  return quoted;
}

std::string ExecOf(const std::string& command) {
  const std::size_t end = EndOfExecutable(command);
  const std::string_view executable = std::string_view(command).substr(0, end);
  std::string exec;
  if (executable.find('%') != std::string_view::npos) exec = ShellStart;
  exec += Quoted(executable);
  exec += QuotedArguments(std::string_view(command).substr(end));
  return TextEscaped(exec);
}

/// The picture beside the executable that bears its name, if there is one.
std::string IconLine(const std::string& command) {
  const std::string picture = command.substr(0, EndOfExecutable(command)) + ".png";
  if (!IsPath(picture) || !IsOrdinaryFile(AT_FDCWD, picture.c_str())) return {};
  return "Icon=" + TextEscaped(picture) + '\n';
}

}  // namespace

std::string DesktopEntry(const std::string& name, const std::string& command,
                         std::string_view more) {
  std::string entry =
      "[Desktop Entry]\n"
      "Type=Application\n";
  entry += "Name=" + TextEscaped(name) + '\n';
  entry += "Comment=Tells of every cookie file that is added, removed or modified\n";
  entry += "Exec=" + ExecOf(command) + '\n';
  entry += IconLine(command);
  entry += "Terminal=false\n";
  return entry.append(more);
}

std::optional<std::string> EntryKey(const std::string& content, std::string_view key) {
  bool inside = false;
  for (std::size_t at = 0; at < content.size();) {
    const std::size_t end = std::min(content.find('\n', at), content.size());
    const std::string_view line = Trimmed(std::string_view(content).substr(at, end - at), " \t\r");
    at = end + 1;
    if (line.starts_with('[')) inside = line == "[Desktop Entry]";
    const std::size_t equals = std::min(line.find('='), line.size());
    if (!inside || equals == line.size() || Trimmed(line.substr(0, equals)) != key) continue;
    return std::string(Trimmed(line.substr(equals + 1)));
  }
  return std::nullopt;
}

std::string CommandOf(std::string_view stored) {
  const std::string text = TextUnescaped(stored);
  std::string_view exec = text;
  if (exec.starts_with(ShellStart)) exec.remove_prefix(ShellStart.size());
  std::string command;
  bool quoted = false;
  for (std::size_t i = 0; i < exec.size(); ++i) {
    const bool more = i + 1 < exec.size();
    if (exec[i] == '"') {
      quoted = !quoted;
    } else if (exec[i] == '%' && more) {
      if (exec[++i] == '%') command += '%';
    } else {
      if (exec[i] == '\\' && quoted && more) ++i;
      command += exec[i];
    }
  }
  return command;
}

}  // namespace platform
