#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Application.h"
#include "platform/Shell.h"
#include "platform/linux/Paths.h"

namespace platform {

namespace {

/// The folder that stands for that help file: one of its name, without the ending.
std::string HelpFolder(const std::string& path) {
  const std::string_view ending = ".chm";
  return IsPath(path) && path.ends_with(ending) ? path.substr(0, path.size() - ending.size()) : "";
}

/// Starts a program that is on its own from then on: in no terminal and no session of ours, and the
/// child of a process that is gone, so that it outlives this one and leaves nothing here to reap.
bool StartApart(const std::string& program, const std::string& argument) {
  // As everywhere after a fork with threads about: system calls alone, on what is made before.
  char* const words[] = {const_cast<char*>(program.c_str()), const_cast<char*>(argument.c_str()),
                         nullptr};
  const pid_t between = fork();
  if (between == 0) {
    setsid();
    const int nowhere = open("/dev/null", O_RDWR);
    if (nowhere < 0) _exit(1);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, standard);
    if (nowhere > STDERR_FILENO) close(nowhere);
    if (fork() == 0) execv(words[0], words);
    _exit(0);
  }
  while (between > 0 && waitpid(between, nullptr, 0) == -1 && errno == EINTR) {
  }
  return between > 0;
}

}  // namespace

std::uint32_t HtmlHelpA(std::uint32_t, const std::string& path, std::uint32_t command,
                        std::uint32_t) {
  const std::string folder = HelpFolder(path);
  if (command != HH_DISPLAY_TOPIC || !CanBeRead(folder + "/index.html")) return 0;
  return StartApart(AppPath() + "/quillmere-help", folder) ? 1 : 0;
}

}  // namespace platform
