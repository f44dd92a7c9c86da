#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;

namespace {

const char* const RunKey = R"(Software\Microsoft\Windows\CurrentVersion\Run)";

class Registry : public testing::Test {
 protected:
  Registry() { setenv("XDG_CONFIG_HOME", config_.Path("config").c_str(), 1); }

  static HKEY Create(const std::string& path) {
    HKEY key = 0;
    EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, path, 63, key), ERROR_SUCCESS) << path;
    return key;
  }
  static int Set(HKEY key, const std::string& name, const std::string& text) {
    return RegSetValueExA(key, name, REG_SZ, text.data(), static_cast<std::uint32_t>(text.size()));
  }
  /// The text of a value, "none" without it.
  static std::string Get(HKEY key, const std::string& name) {
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    if (RegQueryValueExA(key, name, type, nullptr, size) != ERROR_SUCCESS) return "none";
    EXPECT_EQ(type, REG_SZ);
    std::string text(size, '?');
    EXPECT_EQ(RegQueryValueExA(key, name, type, text.data(), size), ERROR_SUCCESS);
    return text;
  }

  TemporaryFolder config_;
};

bool Succeeds(const std::string& command) { return system(command.c_str()) == 0; }

}  // namespace

TEST_F(Registry, ValuesComeBackByteForByte) {
  const HKEY key = Create(R"(Software\Our [own] Key)");
  const std::string texts[] = {"",
                               "text",
                               " blanks around ",
                               "a=b;c#d[e]",
                               R"(C:\new\x41\\)",
                               "\r\n\t",
                               "dword:0000001",
                               "sz:",
                               "grün \xFF",
                               std::string("n\0l", 3)};
  for (const std::string& text : texts) {
    EXPECT_EQ(Set(key, "Name", text), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, "nAME"), text);
    EXPECT_EQ(Set(key, "[" + text + "=", text), ERROR_SUCCESS);
  }
  for (const std::string& text : texts) EXPECT_EQ(Get(key, "[" + text + "="), text);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_NE(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(Get(key, "Name"), "none");
  struct stat info;
  ASSERT_EQ(stat(config_.Path("config/quillmere").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST_F(Registry, NumbersAndRoom) {
  const HKEY key = Create("Numbers");
  const std::uint32_t number = 0xFEDC0123;
  EXPECT_EQ(RegSetValueExA(key, "N", REG_DWORD, &number, 4), ERROR_SUCCESS);
  std::uint32_t read = 0;
  std::uint32_t type = 0;
  std::uint32_t size = 3;
  EXPECT_EQ(RegQueryValueExA(key, "N", type, &read, size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(RegQueryValueExA(key, "N", type, &read, size), ERROR_SUCCESS);
  EXPECT_EQ(read, number);
  EXPECT_EQ(type, REG_DWORD);
  EXPECT_NE(RegSetValueExA(key, "N", REG_DWORD, &number, 3), ERROR_SUCCESS);
  EXPECT_NE(RegSetValueExA(key, "N", 3, &number, 4), ERROR_SUCCESS);
}

TEST_F(Registry, KeysAreFoundInAnyCaseAndByTheirParents) {
  RegCloseKey(Create(R"(One\Two\Three)"));
  HKEY key = 0;
  for (const char* path : {R"(one\two\THREE)", R"(One\Two)", R"(ONE\)", RunKey}) {
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, path, 63, key), ERROR_SUCCESS) << path;
  }
  for (const char* path : {R"(One\Tw)", R"(Two)", R"(One\Two\Three\Four)"}) {
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, path, 63, key), ERROR_FILE_NOT_FOUND) << path;
  }
  EXPECT_NE(RegOpenKeyExA(0x80000002, "One", 63, key), ERROR_SUCCESS);
  key = Create("one");
  EXPECT_EQ(Set(key, "V", "1"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueA(key, "v"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueA(key, "v"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, R"(One\Two\Three)", 63, key), ERROR_SUCCESS);
}

TEST_F(Registry, WhatAHandWroteIsReadAndKept) {
  std::filesystem::create_directories(config_.Path("config/quillmere"));
  const std::string byHand =
      "; a note\r\ngarbage\r\n[ broken\r\n[\\SOFTWARE\\X\\]\r\nPath = /home/me/C:\\new "
      "\r\nBad=dword:xyz\n"
      "=\n[Other]\nPath=other\n";
  config_.Write("config/quillmere/registry.ini", byHand);
  const HKEY key = Create(R"(Software\X)");
  EXPECT_EQ(Get(key, "path"), R"(/home/me/C:\new)");
  EXPECT_EQ(Get(key, "Bad"), "none");
  EXPECT_EQ(Get(Create("other"), "PATH"), "other");
  EXPECT_EQ(Set(key, "New", "1"), ERROR_SUCCESS);
  EXPECT_EQ(Set(key, "Path", "2"), ERROR_SUCCESS);
  const std::string now = config_.Read("config/quillmere/registry.ini");
  for (const char* line : {"; a note", "garbage", "[ broken", "Bad=dword:xyz", "Path=other"}) {
    EXPECT_NE(now.find(line), std::string::npos) << line;
  }
  EXPECT_EQ(Get(key, "New") + Get(key, "Path") + Get(Create("Other"), "New"), "12none");
}

TEST_F(Registry, AFileThatCannotBeReadIsNotWrittenOver) {
  std::filesystem::create_directories(config_.Path("config/quillmere/registry.ini"));
  HKEY key = 0;
  EXPECT_NE(RegCreateKeyExA(HKEY_CURRENT_USER, "New", 63, key), ERROR_SUCCESS);
  setenv("XDG_CONFIG_HOME", "/proc/none", 1);
  EXPECT_NE(RegCreateKeyExA(HKEY_CURRENT_USER, "New", 63, key), ERROR_SUCCESS);
}

TEST_F(Registry, RunValuesAreAutostartEntries) {
  const HKEY key = Create(RunKey);
  const std::string entry = "config/autostart/Quillmere.desktop";
  EXPECT_EQ(Get(key, "Quillmere"), "none");
  EXPECT_EQ(Set(key, "Quillmere", "/opt/no such/program /1"), ERROR_SUCCESS);
  EXPECT_EQ(Get(key, "quillmere"), "/opt/no such/program /1");
  EXPECT_FALSE(config_.Has("config/quillmere/registry.ini"));
  for (const char* off : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
    config_.Write(entry, std::string("[Desktop Entry]\nExec=\"/opt/program\" /1\n") + off);
    EXPECT_EQ(Get(key, "Quillmere"), "none") << off;
  }
  config_.Write(entry,
                "[Desktop Action x]\nExec=other\n[Desktop Entry]\nExec = /opt/program /1 %U\r\n");
  EXPECT_EQ(Get(key, "Quillmere"), "/opt/program /1 ");
  EXPECT_EQ(RegDeleteValueA(key, "QUILLMERE"), ERROR_SUCCESS);
  EXPECT_FALSE(config_.Has(entry));
  EXPECT_EQ(RegDeleteValueA(key, "Quillmere"), ERROR_FILE_NOT_FOUND);
  for (const std::string& name :
       {std::string(), std::string("../escape"), std::string(".hidden"), std::string("n\0l", 3)}) {
    EXPECT_NE(Set(key, name, "/bin/true /1"), ERROR_SUCCESS) << name;
  }
}

TEST_F(Registry, TheDesktopStartsWhatWasWritten) {
  const HKEY key = Create(RunKey);
  const bool validates = Succeeds("desktop-file-validate --help >/dev/null 2>&1");
  const bool launches = Succeeds("gio version >/dev/null 2>&1");
  const std::string names[] = {"plain",          "two words",       "ends /1",
                               "quo\"te's",      "back\\slash\\\\", "dollar $HOME `id`",
                               "tab\tnew\nline", "<>|&;*?#()~=!",   "grün",
                               "\\n\\\"$",       "trailing\\",      "50% off %u %%"};
  for (const std::string& name : names) {
    std::filesystem::create_directories(config_.Path("bin"));
    const std::string program = config_.Write(
        "bin/" + (name.find('/') == std::string::npos ? name : "x"),
        "#!/bin/sh\nprintf '%s|' \"$0\" \"$@\" > " + config_.Path("started") + ".new\nmv " +
            config_.Path("started") + ".new " + config_.Path("started") + "\n");
    chmod(program.c_str(), 0700);
    ASSERT_EQ(Set(key, "Quillmere", program + " /1"), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, "Quillmere"), program + " /1");
    const std::string entry = config_.Path("config/autostart/Quillmere.desktop");
    EXPECT_TRUE(!validates || Succeeds("desktop-file-validate " + entry)) << name;
    if (!launches) continue;
    EXPECT_TRUE(Succeeds("gio launch " + entry)) << name;
    for (int i = 0; i < 300 && !config_.Has("started"); ++i) usleep(10'000);
    EXPECT_EQ(config_.Read("started"), program + "|/1|");
    std::filesystem::remove(config_.Path("started"));
  }
}
