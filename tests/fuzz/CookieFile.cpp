#include "cookies/CookieFileReader.h"
#include "core/Joined.h"
#include "core/PublicDim.h"
#include "platform/Regional.h"
#include "tests/fuzz/Fuzz.h"

// The input is a cookie file, whose rows are worked out a second time.

namespace {

void RequireRows(std::size_t blank, const std::vector<CookieRow>& rows,
                 const std::vector<std::string>& lines) {
  Require(rows.size() == blank + lines.size() / 9, "nine lines make a row");
  for (std::size_t r = blank; r < rows.size(); ++r) {
    const std::string* const line = &lines[9 * (r - blank)];
    Require(rows[r].CookieName == line[0] && rows[r].CookieValue == line[1], "name and value");
    const std::string server(rows[r].Server);
    Require(line[2] == (line[2].ends_with('/') ? server + '/' : server), "server");
    Require(rows[r].ExpireDate == ExpireDateText(line[5]), "expiry date");
    Require(Joined({rows[r].CookieFile, rows[r].FileSize, rows[r].Modified}) == "a.txtsm",
            "the file");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  const std::string bytes(AsText(data, size));
  sandbox.Write("a.txt", bytes);
  PublicDim.CookieDir = sandbox.Path();
  PublicDim.CookieRows.assign(1, {});
  PublicDim.DetailRows.clear();
  const std::string text = platform::TextFromCodePage(bytes.substr(0, bytes.find('\r')));
  for (const int target : {TargetCookieRows, TargetDetailRows}) {
    ReadCookieFile("a.txt", "s", "m", target);
  }
  RequireRows(1, PublicDim.CookieRows, Split(text, '\n'));
  RequireRows(0, PublicDim.DetailRows, Split(text, '\n'));

  const std::string_view delimiter = std::string_view(bytes).substr(0, 2);
  std::string joined;
  for (const std::string_view piece : SplitText(bytes, delimiter)) {
    joined.append(piece).append(delimiter);
  }
  Require(joined.starts_with(bytes) && joined.size() <= size + 2, "the pieces make up the text");
  return 0;
}
