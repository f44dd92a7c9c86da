#include "tests/support/Application.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QWindow>

#include "platform/linux/Widgets.h"

namespace machine {

struct Application::Native {
  int Count = 1;
  char Name[6] = "tests";
  char* Words[2] = {Name, nullptr};
  QApplication Toolkit{Count, Words};
};

Application::Application() : native_(std::make_unique<Native>()) {
  QApplication::setQuitOnLastWindowClosed(false);
}
Application::~Application() = default;

static QMessageBox* Box() { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); }

std::optional<int> OpenBox() {
  const QMessageBox* const box = Box();
  if (box == nullptr) return std::nullopt;
  return box->button(QMessageBox::Yes) != nullptr ? platform::MB_YESNO : platform::MB_OK;
}

void PressInBox(int button) {
  const QMessageBox* const box = Box();
  if (box == nullptr) return;
  box->button(button == platform::IDYES  ? QMessageBox::Yes
              : button == platform::IDNO ? QMessageBox::No
                                         : QMessageBox::Ok)
      ->click();
}

constexpr const char* Closed = "closed by a test";

std::vector<std::string> CloseForms(const std::string& name) {
  std::vector<std::string> texts;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() != name.c_str() || window->property(Closed).isValid()) continue;
    window->setProperty(Closed, true);  // it is freed later
    const auto* const text = window->findChild<QPlainTextEdit*>();
    const QWindow* const shown = window->windowHandle();
    texts.push_back(platform::ToText((shown != nullptr ? shown->title() : QString()) + '\n' +
                                     (text != nullptr ? text->toPlainText() : QString())));
    window->close();
  }
  return texts;
}

bool IsOnScreen(const platform::Form& form) {
  const QWidget* const window = Widget(form);  // hidden in the task bar, without a tray
  return window->isVisible() && !window->isMinimized();
}

bool IsMenuOpen() { return QApplication::activePopupWidget() != nullptr; }

void ChooseEntry(const platform::Menu& menu, int entry) {
  static_cast<QMenu*>(platform::Widget(menu.Native()))->actions()[entry]->trigger();
}

void Paint(const platform::Form& form, bool paints) { Widget(form)->setUpdatesEnabled(paints); }

std::vector<Held> HeldNow() {
  const auto count = [](const char* folder) {
    return static_cast<long>(std::distance(std::filesystem::directory_iterator(folder), {}));
  };
  constexpr long Pooled = 2;  // threads that the toolkit begins and ends, each with a descriptor
  return {{"descriptors", count("/proc/self/fd"), Pooled},
          {"threads", count("/proc/self/task"), Pooled},
          {"windows", QApplication::topLevelWidgets().size(), 0}};
}

Held MemoryNow() {
  malloc_trim(0);
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return {"memory", pages * (sysconf(_SC_PAGESIZE) / 1024), 1500};
}

}  // namespace machine
