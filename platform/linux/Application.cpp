#include "platform/Application.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unistd.h>

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QLoggingCategory>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QStringList>

#include "platform/Forms.h"
#include "platform/linux/Paths.h"
#include "platform/linux/SizeSteps.h"
#include "platform/linux/Widgets.h"
#include "platform/linux/XServer.h"

namespace platform {

const std::string_view PathSeparator = "/";
const std::string_view ExeSuffix;

namespace {

// A signal's handler may do next to nothing, so it only writes a byte; the event loop reads it.
std::array<int, 2> signalPipe{-1, -1};

void NoteSignal(int) {
  const char byte = 1;
  [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
}

void UnloadOnSignal(Form& form) {
  if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, qApp);
  QObject::connect(notifier, &QSocketNotifier::activated, qApp, [&form, notifier] {
    notifier->setEnabled(false);
    form.Unload();
  });
  struct sigaction action{};
  action.sa_handler = NoteSignal;
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    // A signal that whoever started the program had it ignore stays ignored, as under nohup.
    struct sigaction before{};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

class Application : public QApplication {
 public:
  Application(int& argc, char** argv) : QApplication(argc, argv) {
    for (const auto request : {&Application::commitDataRequest, &Application::saveStateRequest}) {
      // The next session's copy is the autostart entry's alone. Nothing ends here: the user can
      // still take the logout back.
      connect(
          this, request, this,
          [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); },
          Qt::DirectConnection);
    }
  }

  Form* StartUp = nullptr;

 protected:
  /// The desktop session has ended. The toolkit would ask every window, and take a refusal of any.
  bool event(QEvent* event) override {
    if (event->type() != QEvent::Quit || !StartUp) return QApplication::event(event);
    StartUp->Unload();
    return true;
  }
};

/// On a plain X server a session ends with the server, and the toolkit then exits on the spot, be
/// it in a yield of an unload that is under way.
void UnloadAtExit() {
  ProcessEnds = true;
  if (auto* application = dynamic_cast<Application*>(qApp)) application->StartUp->Form_Unload();
}

/// The classic dialog face at 8.25 points is 11 pixels high; the faces named here have its widths.
QFont DialogFont() {
  QFont font = QApplication::font();
  font.setFamilies({"MS Sans Serif", "Microsoft Sans Serif", "Liberation Sans", "Arimo", "Arial",
                    "Nimbus Sans", "Noto Sans", font.family()});
  constexpr int EightAndAQuarterPoints = 11;
  font.setPixelSize(EightAndAQuarterPoints);
  return font;
}

/// As it was at the start: of a file that is replaced under the running program the kernel tells
/// another name. In the bytes of the file system; the toolkit's own answer has lost those that are
/// not UTF-8.
const std::string& ExecutablePath() {
  static const std::string path = [] {
    std::error_code failed;
    const std::filesystem::path link = std::filesystem::read_symlink("/proc/self/exe", failed);
    return failed ? ToText(QCoreApplication::applicationFilePath()) : link.native();
  }();
  return path;
}

std::string& CommandLine() {
  static std::string line;
  return line;
}

}  // namespace

std::string AppPath() {
  const std::string folder = FolderOf(ExecutablePath());
  return folder.size() > 1 ? folder.substr(0, folder.size() - 1) : folder;
}

std::string AppExeName() { return NameOf(ExecutablePath()); }

std::string Command() { return CommandLine(); }

int RunApplication(int argc, char** argv, const std::function<std::unique_ptr<Form>()>& startUp) {
  for (int i = 1; i < argc; ++i) CommandLine() += (i > 1 ? " " : "") + std::string(argv[i]);
  // A file that may not grow is a write that fails. What the program starts has the usual handler.
  struct sigaction nothing{};
  nothing.sa_handler = [](int) {};
  sigaction(SIGXFSZ, &nothing, nullptr);
  // The wait for a change listens to what Qt's GLib dispatcher waits for.
  unsetenv("QT_NO_GLIB");
  // What the toolkit misses of a desktop is no news for the terminal; QT_LOGGING_RULES shows it.
  QLoggingCategory::setFilterRules("*=false");
  // Popups need a place of their own choosing and a topmost band, which only X11 has.
  std::optional<X11Choice> x11(std::in_place);
  argc = 1;  // no switch is the toolkit's
  Application application(argc, argv);
  x11.reset();
  const SizeSteps steps;
  QCoreApplication::setApplicationName("Quillmere");
  ExecutablePath();
  QApplication::setFont(DialogFont());
  QApplication::setQuitOnLastWindowClosed(false);

  const std::unique_ptr<Form> form = startUp();
  UnloadOnSignal(*form);
  application.StartUp = form.get();
  [[maybe_unused]] const int noted = std::atexit(UnloadAtExit);
  form->Load();
  return QApplication::exec();
}

void End() { std::_Exit(0); }

}  // namespace platform
