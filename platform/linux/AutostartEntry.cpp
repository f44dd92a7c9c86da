#include "platform/linux/AutostartEntry.h"

#include <algorithm>
#include <string_view>

#include "platform/Files.h"
#include "platform/Regional.h"
#include "platform/Texts.h"
#include "platform/linux/Paths.h"
#include "platform/linux/UserFolders.h"

// An entry's `Exec` is escaped twice: quoted as an argument for whoever starts it, and the result
// as a text of the file, so that a backslash in a path comes to four.

namespace platform {
namespace {

std::string AutostartFolder() {
  const std::string config = ConfigHome();
  return config.empty() ? std::string() : config + "/autostart/";
}

/// The entry's path; the present one where one with the same name in any case of its letters is
/// there. Empty for a name that no entry can have.
std::string EntryPath(const std::string& name) {
  const std::string folder = AutostartFolder();
  if (folder.empty() || name.empty() || name.starts_with('.') || !IsPath('/' + name) ||
      name.find('/') != std::string::npos) {
    return {};
  }
  const std::string file = name + ".desktop";
  if (IsOrdinaryFile(AT_FDCWD, (folder + file).c_str())) return folder + file;
  DirectoryReader reader(folder);
  DirectoryReader::Entry entry;
  while (reader.IsOpen() && reader.Next(entry)) {
    if (FoldCase(entry.Name) == FoldCase(file)) return folder + std::string(entry.Name);
  }
  return folder + file;
}

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

std::string CommandOf(std::string_view exec) {
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

/// The picture beside the executable that bears its name, if there is one.
std::string IconLine(const std::string& command) {
  const std::string picture = command.substr(0, EndOfExecutable(command)) + ".png";
  if (!IsPath(picture) || !IsOrdinaryFile(AT_FDCWD, picture.c_str())) return {};
  return "Icon=" + TextEscaped(picture) + '\n';
}

/// A key of the file's main group, as it is stored.
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

/// Desktops differ in the letters' case, and take a digit for the word.
bool EntryKeyIs(const std::string& content, std::string_view key, std::string_view word,
                std::string_view digit) {
  const std::optional<std::string> value = EntryKey(content, key);
  return value && (FoldCase(*value) == FoldCase(word) || *value == digit);
}

bool IsSwitchedOff(const std::string& content) {
  return EntryKeyIs(content, "Hidden", "true", "1") ||
         EntryKeyIs(content, "X-GNOME-Autostart-enabled", "false", "0") ||
         EntryKeyIs(content, "X-MATE-Autostart-enabled", "false", "0");
}

}  // namespace

std::optional<std::string> AutostartCommand(const std::string& name) {
  InputFile file(EntryPath(name));
  std::string content;
  while (!file.EndOfFile()) content += file.LineInput() + '\n';
  const std::optional<std::string> exec = EntryKey(content, "Exec");
  if (!exec || IsSwitchedOff(content)) return std::nullopt;
  return CommandOf(TextUnescaped(*exec));
}

bool SetAutostartCommand(const std::string& name, const std::string& command) {
  const std::string path = EntryPath(name);
  if (path.empty() || command.find('\0') != std::string::npos || !MakeFolders(FolderOf(path))) {
    return false;
  }
  return WriteFileWhole(
      path,
      "[Desktop Entry]\n"
      "Type=Application\n"
      "Name=" +
          TextEscaped(name) +
          "\n"
          "Comment=Tells of every cookie file that is added, removed or modified\n"
          "Exec=" +
          ExecOf(command) + '\n' + IconLine(command) +
          "Terminal=false\n"
          "X-GNOME-Autostart-enabled=true\n");
}

bool RemoveAutostart(const std::string& name) {
  const std::string path = EntryPath(name);
  return !path.empty() && Kill(path);
}

}  // namespace platform
