// The help viewer, a program of its own beside Quillmere:
//   quillmere-help [FOLDER]
// FOLDER is the one beside the viewer if none is named. A help that is open already comes to the
// front with its first page instead of being opened once more.

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QUrl>

#include "platform/linux/Descriptor.h"
#include "platform/linux/HelpWindow.h"
#include "platform/linux/SizeSteps.h"
#include "platform/linux/XServer.h"

namespace platform {

namespace {

/// The abstract socket of the one viewer of the current folder on this display: such a name belongs
/// to one process at a time and goes with it, however that ends.
sockaddr_un ViewerName() {
  struct stat folder{};
  stat(".", &folder);
  std::string name = "quillmere-help " + std::to_string(getuid()) + ' ' +
                     std::to_string(folder.st_dev) + ' ' + std::to_string(folder.st_ino);
  for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) {
    if (const char* value = std::getenv(display)) name += std::string(" ") + value;
  }
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path + 1, name.c_str(), sizeof address.sun_path - 2);
  return address;
}

/// Any user may take an abstract name, or call at it.
bool IsOwnUser(const Descriptor& connection) {
  ucred other{};
  socklen_t size = sizeof other;
  return getsockopt(connection.Number(), SOL_SOCKET, SO_PEERCRED, &other, &size) == 0 &&
         other.uid == getuid();
}

enum class Answer { Yes, No, Gone };

/// Asks the viewer that has the name to come to the front.
Answer Ask(const sockaddr_un& name) {
  const Descriptor call(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
  const timeval patience{.tv_sec = 5, .tv_usec = 0};  // a busy machine's start; else it hangs
  setsockopt(call.Number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  if (connect(call.Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
    return Answer::Gone;
  }
  if (!IsOwnUser(call)) return Answer::No;
  char yes = 0;
  const ssize_t got = recv(call.Number(), &yes, sizeof yes, 0);
  if (got > 0) return Answer::Yes;
  return got == 0 || errno == ECONNRESET ? Answer::Gone : Answer::No;
}

/// Returns a socket that hears later viewers, none if the name can't be had, or ends this one where
/// another has shown the help.
Descriptor BecomeTheViewer() {
  const sockaddr_un name = ViewerName();
  constexpr int Tries = 100;
  constexpr useconds_t Pause = 10'000;
  for (int i = 0; i < Tries; ++i) {
    Descriptor own(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (bind(own.Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0 &&
        listen(own.Number(), SOMAXCONN) == 0) {
      return own;
    }
    switch (Ask(name)) {
      case Answer::Yes:
        std::exit(0);
      case Answer::No:
        return Descriptor(-1);
      case Answer::Gone:  // it is just beginning or ending
        usleep(Pause);
    }
  }
  return Descriptor(-1);
}

int ShowHelp(int argc, char** argv) {
  // A session that is restored must not open a help that was open when it ended.
  unsetenv("SESSION_MANAGER");
  const Descriptor calls = BecomeTheViewer();
  argc = 1;                                     // no switch is the toolkit's
  std::optional<X11Choice> x11(std::in_place);  // where a window can come to the front
  QApplication application(argc, argv);
  x11.reset();
  const SizeSteps steps;
  QCoreApplication::setApplicationName("Quillmere");

  // By this way the pages are found under any bytes that the folder's path has.
  const QUrl firstPage("file:///proc/self/cwd/index.html");
  HelpWindow window;
  window.Open(firstPage);
  QSocketNotifier notifier(calls.Number(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, &window, [&] {
    const Descriptor call(accept4(calls.Number(), nullptr, nullptr, SOCK_CLOEXEC));
    // Once closed, it leaves the call without an answer, and the caller takes the place.
    if (!call || !IsOwnUser(call) || !window.isVisible()) return;
    window.Open(firstPage);
    send(call.Number(), "y", 1, MSG_NOSIGNAL);
  });
  return QApplication::exec();
}

}  // namespace

}  // namespace platform

int main(int argc, char** argv) {
  std::error_code failed;
  const std::filesystem::path folder =
      argc > 1 ? argv[1]
               : std::filesystem::read_symlink("/proc/self/exe", failed).replace_filename("help");
  return chdir(folder.c_str()) == 0 ? platform::ShowHelp(argc, argv) : 1;
}
