#include "platform/windows/System.h"

#include <cstdlib>

#include "platform/Application.h"
#include "platform/windows/Text.h"

namespace platform {

const std::string_view PathSeparator = "\\";
const std::string_view ExeSuffix = ".exe";

namespace {

std::string ExecutablePath() {
  std::wstring path(0x8000, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return Narrow(path);
}

}  // namespace

std::string AppPath() {
  const std::string path = ExecutablePath();
  const std::size_t end = path.rfind('\\');
  return path.substr(0, end == 2 ? 3 : end);  // of a drive's root the separator is a part
}

std::string AppExeName() {
  const std::string path = ExecutablePath();
  const std::string name = path.substr(path.rfind('\\') + 1);
  return name.substr(0, name.rfind('.'));
}

std::string Command() {
  std::wstring_view line = GetCommandLineW();
  const bool quoted = line.starts_with(L'"');
  line.remove_prefix(std::min(line.find(quoted ? L'"' : L' ', 1), line.size() - 1) + 1);
  return Narrow(line);
}

void End() { std::_Exit(0); }

}  // namespace platform
