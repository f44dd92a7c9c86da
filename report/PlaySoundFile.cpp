#include "report/PlaySoundFile.h"

#include <string>

#include "core/AtScopeEnd.h"
#include "core/Joined.h"
#include "core/PublicDim.h"
#include "platform/MediaControl.h"

namespace {

bool& OptionOf(int which) { return which == 1 ? PublicDim.PlaySound1 : PublicDim.PlaySound2; }

}  // namespace

void PlaySoundFile(int which) {
  if (!OptionOf(which)) return;
  const char* const name = which == 1 ? "1.wav" : "2.wav";
  for (const char* verb : {"close", "open", "play"}) {
    const std::string command = Joined({verb, " \"", PublicDim.SoundDir, name, "\""});
    platform::mciSendStringA(command, nullptr, 0, 0);
  }
}

void PlaySoundRegardless(int which) {
  bool& option = OptionOf(which);
  const AtScopeEnd putBack([&option, remembered = option] { option = remembered; });
  option = true;
  PlaySoundFile(which);
}
