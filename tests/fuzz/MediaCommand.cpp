#include <set>
#include <sys/stat.h>

#include "platform/MediaControl.h"
#include "platform/linux/SoundPlayer.h"
#include "tests/fuzz/Fuzz.h"

// Each line of the input is a media command, in which "@" stands for a folder with sounds. The
// player is one that only notes what it is asked for.

static std::vector<std::string> asked;

void platform::StartSound(std::string_view path) { asked.push_back("play " + std::string(path)); }
void platform::StopSound(std::string_view path) { asked.push_back("close " + std::string(path)); }

namespace {

bool Send(const std::string& command) {
  return platform::mciSendStringA(command, nullptr, 0, 0) == 0;
}

bool IsSound(const std::string& path) {
  struct stat info;
  return path.starts_with('/') && path.find('\0') == std::string::npos &&
         stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool Succeeds(std::string_view command, std::set<std::string>& open,
              std::vector<std::string>& wanted) {
  const std::string verb = TakeField(command, ' ');
  if (command.size() < 3 || !command.starts_with('"') || !command.ends_with('"')) return false;
  const std::string path(command.substr(1, command.size() - 2));
  if (verb == "open") return IsSound(path) && open.insert(path).second;
  if ((verb != "play" && verb != "close") || !open.contains(path)) return false;
  if (verb == "close") open.erase(path);
  wanted.push_back(verb + ' ' + path);
  return true;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  static const WorkingFolder inside(sandbox.Path());
  mkfifo(sandbox.Path("pipe.wav").c_str(), 0600);
  for (const char* name : {"1.wav", "two words.wav", "quo\"te.wav"}) sandbox.Write(name);

  asked.clear();
  std::set<std::string> open;
  std::vector<std::string> wanted;
  for (std::string command : Split(AsText(data, size), '\n')) {
    const std::size_t at = command.find('@');
    if (at != std::string::npos) command.replace(at, 1, sandbox.Path());
    Require(Send(command) == Succeeds(command, open, wanted), "what a command does");
  }
  Require(asked == wanted, "what the player is asked for");
  for (const std::string& path : open) Require(Send("close \"" + path + '"'), "all close");
  return 0;
}
