#include "cookies/DeleteCookieFiles.h"

#include <string>
#include <string_view>

#include "cookies/CookieColumns.h"
#include "core/PublicDim.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "platform/Forms.h"

namespace {

/// Whether the text is the name of something in the folder itself.
bool NamesOneFile(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
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
    // Not by `Kill`: a cookie file may really be called "*.txt".
    if (NamesOneFile(name)) platform::DeleteFileA(PublicDim.CookieDir + name);
    List.Remove(position);
  }
}
