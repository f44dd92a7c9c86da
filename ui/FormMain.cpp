#include "ui/FormMain.h"

#include "cookies/CookieColumns.h"
#include "cookies/CookieSearch.h"
#include "ui/MainLayout.h"

// The main window's design: every control with its place, caption and tab index.

namespace {

constexpr platform::FormDesign MainWindow{.Name = "FormMain",
                                          .Caption = "Quillmere",
                                          .ClientWidth = 8025,
                                          .ClientHeight = 3810,
                                          .MinWidth = MinMainWidth,
                                          .MinHeight = MinMainHeight};

constexpr int TimerMilliseconds = 500;
// Between two looks at whether a scan that a start waits for has ended.
constexpr int StartRetryMilliseconds = 20;

}  // namespace

FormMain::FormMain()
    : Form(MainWindow),
      CmdStart(
          *this,
          {.Name = "CmdStart", .Caption = "Start", .At = {270, 390, 1500, 465}, .TabIndex = 0}),
      CmdStop(*this,
              {.Name = "CmdStop", .Caption = "Stop", .At = {270, 920, 1500, 465}, .TabIndex = 1}),
      CmdHelp(*this,
              {.Name = "CmdHelp", .Caption = "Help", .At = {270, 1450, 1500, 465}, .TabIndex = 2}),
      CmdAbout(
          *this,
          {.Name = "CmdAbout", .Caption = "About", .At = {270, 1980, 1500, 465}, .TabIndex = 3}),
      TabStrip1(
          *this,
          {.Name = "TabStrip1", .At = {1950, 180, 0, 0}, .TabIndex = 5, .AccessibleName = "Pages"},
          {"Log", "Cookies", "Search", "Tools", "Sound", "Options"}),
      // What follows lies above the tab strip.
      ListLog(*this, {.Name = "ListLog", .At = {}, .TabIndex = 4, .AccessibleName = "Log"}),
      ListVCookie(*this,
                  {.Name = "ListVCookie", .At = {}, .TabIndex = 6, .AccessibleName = "Cookies"},
                  CookieColumnHeaders()),

      Picture1(*this, {.Name = "Picture1", .At = {}, .TabIndex = 7}),
      ListVSearch(Picture1,
                  {.Name = "ListVSearch",
                   .At = {45, 495, 0, 0},
                   .TabIndex = 8,
                   .AccessibleName = "Search results"},
                  CookieColumnHeaders()),
      Label1(Picture1,
             {.Name = "Label1", .Caption = "Search", .At = {60, 90, 510, 195}, .TabIndex = 9}),
      TextSearch(Picture1, {.Name = "TextSearch",
                            .At = {675, 75, 1575, 285},
                            .TabIndex = 10,
                            .AccessibleName = "Search for"}),
      Combo1(Picture1,
             {.Name = "Combo1",
              .At = {2565, 75, 1920, 315},
              .TabIndex = 11,
              .AccessibleName = "Search in"},
             SearchFieldNames()),
      Label2(Picture1,
             {.Name = "Label2", .Caption = "in", .At = {2325, 90, 120, 195}, .TabIndex = 12}),
      CmdSearch(
          Picture1,
          {.Name = "CmdSearch", .Caption = "Search", .At = {4545, 90, 900, 315}, .TabIndex = 13}),

      Picture2(*this, {.Name = "Picture2", .At = {}, .TabIndex = 14}),
      Frame1(Picture2,
             {.Name = "Frame1", .Caption = "Cleaner", .At = {30, 45, 0, 0}, .TabIndex = 18}),
      Check1(Frame1, {.Name = "Check1",
                      .Caption = "Clean Cookies",
                      .At = {315, 390, 1950, 240},
                      .TabIndex = 15}),
      Check3(Frame1, {.Name = "Check3",
                      .Caption = "Empty Recycle Bin",
                      .At = {315, 765, 2130, 240},
                      .TabIndex = 16}),
      Check2(Frame1, {.Name = "Check2",
                      .Caption = "Clean Windows Recent Documents History",
                      .At = {315, 1125, 4260, 240},
                      .TabIndex = 17}),
      CmdClean(
          Frame1,
          {.Name = "CmdClean", .Caption = "&Clean", .At = {3975, 375, 1155, 405}, .TabIndex = 19}),

      Picture3(*this, {.Name = "Picture3", .At = {}, .TabIndex = 20}),
      ChkSound1(Picture3, {.Name = "ChkSound1",
                           .Caption = "Play sound when a new cookie file is added",
                           .At = {135, 255, 3885, 270},
                           .TabIndex = 21}),
      ChkSound2(Picture3, {.Name = "ChkSound2",
                           .Caption = "Play sound when a cookie file is removed",
                           .At = {135, 720, 3885, 270},
                           .TabIndex = 22}),
      CmdSound1(Picture3, {.Name = "CmdSound1",
                           .Caption = "Play",
                           .At = {4080, 240, 990, 315},
                           .TabIndex = 23,
                           .AccessibleName = "Play the sound of an added cookie file"}),
      CmdSound2(Picture3, {.Name = "CmdSound2",
                           .Caption = "Play",
                           .At = {4080, 690, 990, 315},
                           .TabIndex = 24,
                           .AccessibleName = "Play the sound of a removed cookie file"}),

      Picture4(*this, {.Name = "Picture4", .At = {}, .TabIndex = 25}),
      CheckLog(Picture4, {.Name = "CheckLog",
                          .Caption = "Do not save log file",
                          .At = {135, 240, 2415, 285},
                          .TabIndex = 26}),
      CheckStart(Picture4, {.Name = "CheckStart",
                            .Caption = "Start with windows",
                            .At = {135, 660, 2415, 285},
                            .TabIndex = 27}),
      CheckTray(Picture4, {.Name = "CheckTray",
                           .Caption = "Minimize to system tray",
                           .At = {135, 1095, 2415, 285},
                           .TabIndex = 28}),

      Image1(*this, {.Name = "Image1", .At = {1110, 3315, 240, 240}}, "tray.ico"),
      TimerCompare(TimerMilliseconds, true),
      TimerCookie(TimerMilliseconds, true),
      TimerStart(StartRetryMilliseconds, false),
      MenuCookie(*this, "MenuLV",
                 {{"Menu_View", "View detail", [this] { Menu_View_Click(); }},
                  {"Menu_Delete", "Delete", [this] { Menu_Delete_Click(); }}}),
      MenuSearch(*this, "MenuLS",
                 {{"Menu_ViewSearch", "View detail", [this] { Menu_ViewSearch_Click(); }},
                  {"Menu_DelSearch", "Delete", [this] { Menu_DelSearch_Click(); }}}),
      MenuPopup(*this, "MenuPopup",
                {{"Menu_Show", "Show", [this] { Menu_Show_Click(); }},
                 {"Menu_x", "-", {}},
                 {"Menu_Help", "Help", [this] { Menu_Help_Click(); }},
                 {"Menu_About", "About", [this] { Menu_About_Click(); }},
                 {"Menu_y", "-", {}},
                 {"Menu_Exit", "Exit", [this] { Menu_Exit_Click(); }}}) {
  Image1.Visible(false);
  TextSearch.Text("password");
  ConnectEvents();
  ConnectKeys();
}

void FormMain::ConnectEvents() {
  CmdStart.Click = [this] { CmdStart_Click(); };
  CmdStop.Click = [this] { CmdStop_Click(); };
  CmdHelp.Click = [this] { CmdHelp_Click(); };
  CmdAbout.Click = [this] { CmdAbout_Click(); };
  TabStrip1.Click = [this] { TabStrip1_Click(); };
  CmdSearch.Click = [this] { CmdSearch_Click(); };
  TextSearch.KeyPress = [this](std::int16_t KeyAscii) { TextSearch_KeyPress(KeyAscii); };
  CmdClean.Click = [this] { CmdClean_Click(); };
  CmdSound1.Click = [this] { CmdSound1_Click(); };
  CmdSound2.Click = [this] { CmdSound2_Click(); };
  ChkSound1.Click = [this] { ChkSound1_Click(); };
  ChkSound2.Click = [this] { ChkSound2_Click(); };
  CheckLog.Click = [this] { CheckLog_Click(); };
  CheckStart.Click = [this] { CheckStart_Click(); };
  CheckTray.Click = [this] { CheckTray_Click(); };
  TimerCompare.Tick = [this] { TimerCompare_Timer(); };
  TimerCookie.Tick = [this] { TimerCookie_Timer(); };
  TimerStart.Tick = [this] { TimerStart_Timer(); };
  ConnectListEvents();
}

void FormMain::ConnectListEvents() {
  ListVCookie.ColumnClick = [this](int Index) { ListVCookie_ColumnClick(Index); };
  ListVCookie.DblClick = [this] { ListVCookie_DblClick(); };
  ListVCookie.KeyPress = [this](std::int16_t KeyAscii) { ListVCookie_KeyPress(KeyAscii); };
  ListVCookie.MouseUp = [this](std::int16_t Button) { ListVCookie_MouseUp(Button); };
  ListVSearch.ColumnClick = [this](int Index) { ListVSearch_ColumnClick(Index); };
  ListVSearch.DblClick = [this] { ListVSearch_DblClick(); };
  ListVSearch.KeyPress = [this](std::int16_t KeyAscii) { ListVSearch_KeyPress(KeyAscii); };
  ListVSearch.MouseUp = [this](std::int16_t Button) { ListVSearch_MouseUp(Button); };
}

void FormMain::ConnectKeys() {
  using namespace platform;
  const auto next = [this] { SwitchTab(1); };
  const auto previous = [this] { SwitchTab(-1); };
  Accelerator(vbKeyTab, vbCtrlMask, next);
  Accelerator(vbKeyPageDown, vbCtrlMask, next);
  Accelerator(vbKeyTab, vbCtrlMask | vbShiftMask, previous);
  Accelerator(vbKeyPageUp, vbCtrlMask, previous);
  Accelerator(vbKeyF1, 0, [this] { CmdHelp_Click(); });
  Accelerator(vbKeyF, vbCtrlMask, [this] { GoToSearch(); });
}
