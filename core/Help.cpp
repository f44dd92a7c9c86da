#include "core/Help.h"

#include "core/PublicDim.h"
#include "platform/Shell.h"

void ShowHelp(std::uint32_t window) {
  platform::HtmlHelpA(window, PublicDim.AppPath + "help.chm", platform::HH_DISPLAY_TOPIC, 0);
}
