#include "platform/windows/SystemWindows.h"

#include <vector>

#include "platform/windows/FormWidget.h"

namespace platform {

namespace {

int openBoxes = 0;

/// Keeps the windows that belong to the main one from being used; the box does so for that one
/// itself. Popups go on, and the windows that they open.
class OthersWait {
 public:
  explicit OthersWait(const FormWidget* main) {
    for (FormWidget* window : FormWidget::All()) {
      if (window->BelongsTo() != main || window->Window() == nullptr) continue;
      if (!EnableWindow(window->Window(), FALSE)) disabled_.push_back(window->Window());
    }
  }
  OthersWait(const OthersWait&) = delete;
  OthersWait& operator=(const OthersWait&) = delete;
  ~OthersWait() {
    for (const HWND window : disabled_) EnableWindow(window, TRUE);
  }

 private:
  std::vector<HWND> disabled_;
};

}  // namespace

bool InsideMsgBox() { return openBoxes > 0; }

int MsgBox(const std::string& text, int flags) {
  const FormWidget* main = FormWidget::Main();
  ++openBoxes;
  int answer = 0;
  {
    const OthersWait waiting(main);
    answer = MessageBoxW(main != nullptr ? main->Window() : nullptr, Wide(text).c_str(),
                         L"Quillmere", static_cast<UINT>(flags));
  }
  --openBoxes;
  // A box of two buttons has neither a close box nor a key for it.
  return answer;
}

}  // namespace platform
