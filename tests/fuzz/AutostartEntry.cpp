#include "platform/linux/AutostartEntry.h"

#include <glib.h>

#include "tests/fuzz/Fuzz.h"

// The input: an executable's name, its arguments and an entry that somebody else made, divided by
// the character 1F.

namespace {

using Words = std::vector<std::string>;

Words ShellWords(const std::string& exec) {
  gchar** argv = nullptr;
  if (!g_shell_parse_argv(exec.c_str(), nullptr, &argv, nullptr)) return {};
  Words words;
  for (gchar** word = argv; *word; ++word) words.emplace_back(*word);
  g_strfreev(argv);
  return words;
}

/// What a desktop would start. It looks for the executable before it replaces the field codes.
Words StartedBy(const std::string& entry) {
  g_autoptr(GKeyFile) file = g_key_file_new();
  g_key_file_load_from_file(file, entry.c_str(), G_KEY_FILE_NONE, nullptr);
  g_autofree gchar* value = g_key_file_get_string(file, "Desktop Entry", "Exec", nullptr);
  std::string exec = value ? value : "";
  const Words raw = ShellWords(exec);
  Require(!raw.empty() && access(raw[0].c_str(), F_OK) == 0, "the executable is found");
  for (std::size_t at = 0; (at = exec.find('%', at)) != std::string::npos; exec.erase(at++, 1)) {
    Require(exec.substr(at, 2) == "%%", "there is no field code");
  }
  Words words = ShellWords(exec);
  const bool byShell = raw[0] == "/bin/sh" && words.at(2) == R"(exec "$0" "$@")";
  words.erase(words.begin(), words.begin() + (byShell ? 3 : 0));
  return words;
}

void RequireRoundTrip(const std::string& command) {
  Require(platform::SetAutostartCommand("Round", command), "a command is written");
  Require(platform::AutostartCommand("Round") == command, "and read as it was written");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  std::filesystem::create_directories(sandbox.Path("config/autostart"));
  std::string_view rest = AsText(data, size);
  const std::string name = TakeField(rest, '\x1f').substr(0, 200);
  const std::string arguments = TakeField(rest, '\x1f');

  sandbox.Write("config/autostart/Other.desktop", rest);
  const std::optional<std::string> other = platform::AutostartCommand("Other");
  if (other && other->find('\0') == std::string::npos) RequireRoundTrip(*other);

  const std::string command = sandbox.Path(name) + ' ' + arguments;
  if (name.find('/') != std::string::npos || command.find('\0') != std::string::npos ||
      sandbox.Has(name)) {
    return 0;
  }
  sandbox.Write(name);
  RequireRoundTrip(command);
  if (g_utf8_validate(command.c_str(), -1, nullptr)) {  // No entry may hold anything else.
    Words expected = Split(arguments, ' ');
    std::erase(expected, "");
    expected.insert(expected.begin(), sandbox.Path(name));
    Require(StartedBy(sandbox.Path("config/autostart/Round.desktop")) == expected,
            "the desktop starts what was written");
  }
  std::filesystem::remove(sandbox.Path(name));
  return 0;
}
