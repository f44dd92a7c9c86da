#include "platform/windows/SystemWindows.h"

#include "platform/Application.h"

#include "platform/windows/EventLoop.h"
#include "platform/windows/Widget.h"

namespace platform {

int RunApplication(int, char**, const std::function<std::unique_ptr<Form>()>& startUp) {
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES |
                                                         ICC_TAB_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&classes);
  const std::unique_ptr<Form> form = startUp();
  ListenInForeignLoops();
  form->Load();
  return RunEventLoop();
}

}  // namespace platform
