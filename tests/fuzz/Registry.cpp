#include <algorithm>

#include "core/ModRegistry.h"
#include "platform/Regional.h"
#include "tests/fuzz/Fuzz.h"

// The input: a key, a value's name, its text, and the file that is there before, divided by the
// character 1F.

namespace {

/// How many of the lines before are no more, wherever they stand.
std::size_t Lost(std::string before, std::string now) {
  for (std::string* text : {&before, &now}) std::replace(text->begin(), text->end(), '\r', '\n');
  std::vector<std::string> lines = Split(before, '\n');
  for (const std::string& line : Split(now, '\n')) {
    const auto same = std::find(lines.begin(), lines.end(), line);
    if (same != lines.end()) lines.erase(same);
  }
  return lines.size() - static_cast<std::size_t>(std::count(lines.begin(), lines.end(), ""));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  constexpr auto Hive = platform::HKEY_CURRENT_USER;
  const std::string file = "config/quillmere/registry.ini";
  std::filesystem::create_directories(sandbox.Path("config/quillmere"));
  std::string_view rest = AsText(data, size);
  const std::string key = TakeField(rest, '\x1f');
  const std::string name = TakeField(rest, '\x1f');
  const std::string text = TakeField(rest, '\x1f');
  const bool run = platform::FoldCase(key).find("currentversion\\run") != std::string::npos;
  if (run) return 0;  // The file has no part in it.

  sandbox.Write(file, rest);
  ReadRegValue(Hive, key, name);
  platform::HKEY opened = 0;
  const bool made = platform::RegCreateKeyExA(Hive, key, 0, opened) == platform::ERROR_SUCCESS;
  platform::RegCloseKey(opened);
  Require(Lost(std::string(rest), sandbox.Read(file)) == 0, "a new key takes nothing");
  if (!made) return 0;

  const RegValue neighbour = ReadRegValue(Hive, key, name + '2');
  WriteRegValue(Hive, key, name, platform::REG_SZ, text);
  const std::string written = sandbox.Read(file);
  Require(Lost(std::string(rest), written) <= 1, "a value takes its own line alone");
  Require(ReadRegValue(Hive, key, name) == RegValue(text), "a text comes back");
  const RegValue number = static_cast<std::uint32_t>(size * 2654435769);
  WriteRegValue(Hive, key, name, platform::REG_DWORD, number);
  Require(ReadRegValue(Hive, key, name) == number, "a number comes back");
  Require(ReadRegValue(Hive, key, name + '2') == neighbour, "its neighbour stays");
  WriteRegValue(Hive, key, name, platform::REG_SZ, text);
  Require(sandbox.Read(file) == written, "nothing else has changed");
  DeleteRegValue(Hive, key, name);
  Require(Lost(written, sandbox.Read(file)) <= 1, "a deletion takes one line");
  return 0;
}
