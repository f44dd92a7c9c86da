#include "cookies/DeleteCookieFiles.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "cookies/CookieColumns.h"
#include "cookies/PresentNames.h"
#include "core/PublicDim.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "platform/Forms.h"
#include "platform/Regional.h"

namespace {

/// Whether the text is the name of something in the folder itself.
bool NamesOneFile(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find(platform::PathSeparator) == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

/// Deletes the files that rows name, one after the other.
class FileDeletion {
 public:
  /// Not by `Kill`: a cookie file may really be called "*.txt".
  void Delete(const std::string& name) {
    if (!NamesOneFile(name)) return;
    if (platform::DeleteFileA(PublicDim.CookieDir + name) != 0) {
      gone_.insert(platform::FoldCase(name));
    } else if (!gone_.contains(platform::FoldCase(name))) {
      DeleteOnlyOneEqualTo(name);
    }
  }

 private:
  void DeleteOnlyOneEqualTo(const std::string& name) {
    if (!present_) present_.emplace();
    const std::string other = present_->OnlyOneEqualTo(name);
    if (!other.empty()) platform::DeleteFileA(PublicDim.CookieDir + other);
  }

  /// Where one of two such files went, a second row of its own does not mean the other one.
  std::unordered_set<std::string> gone_;
  std::optional<PresentNames> present_;  ///< Many rows may be out of date: looked at once.
};

}  // namespace

void DeleteSelectedCookieFiles(platform::ListView& List) {
  if (List.Count() == 0) return;
  const int answer =
      platform::MsgBox("Do you want to delete selected cookie file(s) and all cookies in them?",
                       platform::MB_YESNO + platform::MB_ICONQUESTION);
  if (answer == platform::IDNO) return;

  // From the last row to the first: a removal moves only rows that have been visited. The list may
  // have been rebuilt while the question stood open, so it is counted only now.
  FileDeletion deletion;
  for (int position = List.Count(); position >= 1; --position) {
    const platform::ListView::ListItem row = List.Item(position);
    if (!row.Selected()) continue;
    deletion.Delete(row.SubItems(CookieFileCell));
    List.Remove(position);
  }
}
