#include "cookies/DeleteCookieFiles.h"

#include <string>
#include <string_view>

#include "cookies/CookieColumns.h"
#include "core/PublicDim.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "platform/Forms.h"

namespace {

/// Whether the text can name nothing but one file of the folder. A cookie file may really be called
/// "*.txt", which the platform would take for all of them.
bool NamesOneFile(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && !name.starts_with("*.") &&
         name.find(platform::PathSeparator) == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

}  // namespace

void DeleteSelectedCookieFiles(platform::ListView& List) {
  if (List.Count() == 0) return;
  const int answer =
      platform::MsgBox("Do you want to delete selected cookie file(s) and all cookies in them?",
                       platform::MB_YESNO + platform::MB_ICONQUESTION);
  if (answer == platform::IDNO) return;

  // From the last row to the first: a removal moves only rows that have been visited. The list may
  // have been rebuilt while the question stood open, so it is counted only now.
  for (int position = List.Count(); position >= 1; --position) {
    const platform::ListView::ListItem row = List.Item(position);
    if (!row.Selected()) continue;
    const std::string name = row.SubItems(CookieFileCell);
    if (NamesOneFile(name)) platform::Kill(PublicDim.CookieDir + name);
    List.Remove(position);
  }
}
