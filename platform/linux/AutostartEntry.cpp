#include "platform/linux/AutostartEntry.h"

#include <algorithm>
#include <string_view>

#include "platform/Files.h"
#include "platform/Regional.h"
#include "platform/Texts.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/Paths.h"
#include "platform/linux/UserFolders.h"

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
  return CommandOf(*exec);
}

bool SetAutostartCommand(const std::string& name, const std::string& command) {
  const std::string path = EntryPath(name);
  if (path.empty() || command.find('\0') != std::string::npos || !MakeFolders(FolderOf(path))) {
    return false;
  }
  return WriteFileWhole(path, DesktopEntry(name, command, "X-GNOME-Autostart-enabled=true\n"));
}

bool RemoveAutostart(const std::string& name) {
  const std::string path = EntryPath(name);
  return !path.empty() && Kill(path);
}

}  // namespace platform
