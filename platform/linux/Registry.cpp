#include "platform/Registry.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "platform/Regional.h"
#include "platform/Texts.h"
#include "platform/common/HandleTable.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/Paths.h"
#include "platform/linux/UserFolders.h"

// The registry is the text file quillmere/registry.ini in the user's configuration folder:
//
//   [Software\Vendor\Product]
//   Name=sz:a text
//   Number=dword:0000002a
//
// A value without a type is a text. "\\" stands for a backslash in names and texts, and "\xHH" for
// the byte of that number; any other backslash for itself. Lines of another form are left alone.
// Only the values of the key "Run" lie elsewhere: they are what the desktop starts at log-on.

namespace platform {
namespace {

constexpr int ERROR_ACCESS_DENIED = 5;
constexpr int ERROR_INVALID_HANDLE = 6;
constexpr int ERROR_INVALID_PARAMETER = 87;

const char* const RunKey = R"(Software\Microsoft\Windows\CurrentVersion\Run)";

struct Value {
  std::uint32_t Type = REG_SZ;
  std::string Bytes;
};

bool SameName(std::string_view one, std::string_view other) {
  return FoldCase(one) == FoldCase(other);
}

constexpr std::string_view Blanks = " \t";

std::string ByteEscape(char byte) {
  constexpr std::string_view Digits = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(byte);
  return {'\\', 'x', Digits[code >> 4], Digits[code & 15]};
}

std::string Escaped(std::string_view text, std::string_view reserved) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool control = static_cast<unsigned char>(text[i]) < 0x20;
    const bool outerBlank = text[i] == ' ' && (i == 0 || i + 1 == text.size());
    if (text[i] == '\\') {
      escaped += "\\\\";
    } else if (control || outerBlank || reserved.find(text[i]) != std::string_view::npos) {
      escaped += ByteEscape(text[i]);
    } else {
      escaped += text[i];
    }
  }
  return escaped;
}

std::string Unescaped(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    std::size_t taken = 1;
    unsigned code = 0;
    if (text.starts_with("\\\\")) {
      taken = 2;
    } else if (text.starts_with("\\x") && text.size() >= 4 &&
               std::from_chars(text.data() + 2, text.data() + 4, code, 16).ptr == text.data() + 4) {
      taken = 4;
    }
    plain += taken == 4 ? static_cast<char>(code) : text.front();
    text.remove_prefix(taken);
  }
  return plain;
}

/// A key path without separators at its ends.
std::string NormalPath(std::string path) {
  path.erase(0, path.find_first_not_of('\\'));
  while (path.ends_with('\\')) path.pop_back();
  return path;
}

std::optional<std::string> SectionOf(std::string_view line) {
  line = Trimmed(line, Blanks);
  if (!line.starts_with('[') || !line.ends_with(']')) return std::nullopt;
  return NormalPath(std::string(line.substr(1, line.size() - 2)));
}

/// The name of a value line, still escaped, and where its text begins.
std::optional<std::pair<std::string_view, std::string_view>> SplitValueLine(std::string_view line) {
  const std::size_t equals = line.find('=');
  const std::string_view name = Trimmed(line.substr(0, equals), Blanks);
  if (equals == std::string_view::npos || name.starts_with(';') || name.starts_with('#')) {
    return std::nullopt;
  }
  return std::pair{name, line.substr(equals + 1)};
}

std::string LineOf(const std::string& name, const Value& value) {
  std::string line = Escaped(name, "=[;#") + '=';
  if (value.Type == REG_SZ) return line + "sz:" + Escaped(value.Bytes, "");
  line += "dword:";
  std::uint32_t number = 0;
  std::memcpy(&number, value.Bytes.data(), sizeof number);
  for (int shift = 28; shift >= 0; shift -= 4) line += "0123456789abcdef"[number >> shift & 15];
  return line;
}

std::optional<Value> ValueOf(std::string_view text) {
  text = Trimmed(text, Blanks);
  if (!text.starts_with("dword:")) {
    if (text.starts_with("sz:")) text.remove_prefix(3);
    return Value{REG_SZ, Unescaped(text)};
  }
  text.remove_prefix(6);
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, 16);
  if (error != std::errc() || stopped != end) return std::nullopt;
  Value value{REG_DWORD, std::string(sizeof number, '\0')};
  std::memcpy(value.Bytes.data(), &number, sizeof number);
  return value;
}

/// The registry's file, line by line.
class RegistryFile {
 public:
  RegistryFile() {
    const std::string config = ConfigHome();
    if (config.empty()) return;
    folder_ = config + "/quillmere";
    InputFile file(Path());
    // What cannot be read must not be written over.
    usable_ = file.IsOpen() || access(Path().c_str(), F_OK) != 0;
    std::string text;
    while (!file.EndOfFile()) text += file.LineInput() + '\n';
    for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
      lines_.push_back(text.substr(begin, end - begin));
    }
    while (!lines_.empty() && lines_.back().empty()) lines_.pop_back();
  }

  bool HasKey(const std::string& path) const {
    return path.empty() || std::any_of(lines_.begin(), lines_.end(), [&](const std::string& line) {
             const std::optional<std::string> section = SectionOf(line);
             if (!section) return false;
             return SameName(*section, path) ||
                    FoldCase(*section).starts_with(FoldCase(path) + '\\');
           });
  }

  void AddKey(const std::string& path) { lines_.push_back('[' + path + ']'); }

  std::optional<Value> Get(const std::string& path, const std::string& name) const {
    const std::size_t line = Find(path, name);
    if (line == lines_.size()) return std::nullopt;
    const auto found = SplitValueLine(lines_[line]);
    return found ? ValueOf(found->second) : std::nullopt;
  }

  void Set(const std::string& path, const std::string& name, const Value& value) {
    const std::size_t line = Find(path, name);
    if (line < lines_.size()) {
      lines_[line] = LineOf(name, value);
      return;
    }
    const auto at = std::find_if(lines_.begin(), lines_.end(), [&](const std::string& text) {
      const std::optional<std::string> section = SectionOf(text);
      return section && SameName(*section, path);
    });
    const bool missing = at == lines_.end();
    if (missing) AddKey(path);
    lines_.insert(missing ? lines_.end() : at + 1, LineOf(name, value));
  }

  bool Remove(const std::string& path, const std::string& name) {
    const std::size_t line = Find(path, name);
    if (line == lines_.size()) return false;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(line));
    return true;
  }

  bool Save() const {
    if (!usable_ || !MakeFolders(folder_)) return false;
    std::string text;
    for (const std::string& line : lines_) text += line + '\n';
    return WriteFileWhole(Path(), text);
  }

 private:
  std::string Path() const { return folder_ + "/registry.ini"; }

  std::size_t Find(const std::string& path, const std::string& name) const {
    bool inside = path.empty();
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      if (const auto section = SectionOf(lines_[i])) {
        inside = SameName(*section, path);
      } else if (const auto value = SplitValueLine(lines_[i]);
                 inside && value && SameName(Unescaped(value->first), name)) {
        return i;
      }
    }
    return lines_.size();
  }

  std::string folder_;
  bool usable_ = false;
  std::vector<std::string> lines_;
};

struct OpenKey {
  std::string Path;
  bool IsRun() const { return SameName(Path, RunKey); }
};

HandleTable<OpenKey>& Keys() {
  static HandleTable<OpenKey> table;
  return table;
}

const OpenKey* Find(HKEY key) {
  static const OpenKey Root;
  return key == HKEY_CURRENT_USER ? &Root : Keys().Find(static_cast<std::int32_t>(key));
}

bool IsKeyPath(const std::string& path) {
  return path.find("\\\\") == std::string::npos &&
         std::none_of(path.begin(), path.end(),
                      [](char letter) { return static_cast<unsigned char>(letter) < 0x20; });
}

int Open(HKEY hive, const std::string& text, bool create, HKEY& key) {
  const OpenKey* const parent = Find(hive);
  if (parent == nullptr) return ERROR_INVALID_HANDLE;
  OpenKey opened{NormalPath(parent->Path + '\\' + NormalPath(text))};
  if (!IsKeyPath(opened.Path)) return ERROR_INVALID_PARAMETER;
  if (!opened.IsRun()) {
    RegistryFile file;
    if (!file.HasKey(opened.Path)) {
      if (!create) return ERROR_FILE_NOT_FOUND;
      file.AddKey(opened.Path);
      if (!file.Save()) return ERROR_ACCESS_DENIED;
    }
  }
  key = static_cast<HKEY>(Keys().Add(std::make_unique<OpenKey>(std::move(opened))));
  return ERROR_SUCCESS;
}

std::optional<Value> Read(const OpenKey& key, const std::string& name) {
  if (!key.IsRun()) return RegistryFile().Get(key.Path, name);
  const std::optional<std::string> command = AutostartCommand(name);
  return command ? std::optional(Value{REG_SZ, *command}) : std::nullopt;
}

}  // namespace

int RegCreateKeyExA(HKEY hive, const std::string& path, std::uint32_t /*access*/, HKEY& key) {
  return Open(hive, path, true, key);
}

int RegOpenKeyExA(HKEY hive, const std::string& path, std::uint32_t /*access*/, HKEY& key) {
  return Open(hive, path, false, key);
}

int RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type, const void* data,
                   std::uint32_t size) {
  const OpenKey* const open = Find(key);
  if (open == nullptr) return ERROR_INVALID_HANDLE;
  const bool known = type == REG_SZ || (type == REG_DWORD && size == sizeof(std::uint32_t));
  if (!known || (data == nullptr && size > 0)) return ERROR_INVALID_PARAMETER;
  const Value value{type, std::string(static_cast<const char*>(data), size)};
  if (open->IsRun()) {
    if (type != REG_SZ) return ERROR_INVALID_PARAMETER;
    return SetAutostartCommand(name, value.Bytes) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
  }
  RegistryFile file;
  file.Set(open->Path, name, value);
  return file.Save() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

int RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t& type, void* data,
                     std::uint32_t& size) {
  const OpenKey* const open = Find(key);
  if (open == nullptr) return ERROR_INVALID_HANDLE;
  const std::optional<Value> value = Read(*open, name);
  if (!value) return ERROR_FILE_NOT_FOUND;
  const std::uint32_t room = size;
  type = value->Type;
  size = static_cast<std::uint32_t>(value->Bytes.size());
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < size) return ERROR_MORE_DATA;
  std::copy(value->Bytes.begin(), value->Bytes.end(), static_cast<char*>(data));
  return ERROR_SUCCESS;
}

int RegDeleteValueA(HKEY key, const std::string& name) {
  const OpenKey* const open = Find(key);
  if (open == nullptr) return ERROR_INVALID_HANDLE;
  if (open->IsRun()) return RemoveAutostart(name) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  RegistryFile file;
  if (!file.Remove(open->Path, name)) return ERROR_FILE_NOT_FOUND;
  return file.Save() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

int RegCloseKey(HKEY key) {
  return Keys().Remove(static_cast<std::int32_t>(key)) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

}  // namespace platform
