#include <string>

#include <gtest/gtest.h>

#include "cookies/CookieList.h"
#include "cookies/DeleteCookieFiles.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

TEST(DeleteCookieFiles, NeverTakesANameForMoreThanOneFile) {
  const CookieFolder folder;
  for (const char* name : {"plain.txt", "*.txt", "sub/inner.txt"}) folder.Write(name);
  Names files = folder.Entries();
  CookieLists window;
  const auto deleteNamed = [&window](const std::string& name) {
    CookieRow row;
    row.CookieFile = name;
    AddCookieRow(window.ListVCookie, row);
    window.ListVCookie.Item(1).Selected(true);
    const Answers yes(QMessageBox::Yes);
    DeleteSelectedCookieFiles(window.ListVCookie);
    EXPECT_EQ(yes.Asked.size(), 1u);
    EXPECT_EQ(window.ListVCookie.Count(), 0);
  };
  for (const std::string name :
       {"*.*", "", ".", "..", "sub/inner.txt", "../", "*", "sub", "*.TXT", "pl?in.txt"}) {
    deleteNamed(name);
  }
  deleteNamed(std::string("plain.txt\0x", 11));
  deleteNamed("*.txt");
  files.erase("*.txt");
  const WorkingFolder working(folder.Path(""));
  for (const char* unresolved : {"", "\\"}) {
    PublicDim.CookieDir = unresolved;
    deleteNamed("plain.txt");
  }
  EXPECT_EQ(folder.Entries(), files);
  EXPECT_TRUE(folder.Has("sub/inner.txt"));
}
