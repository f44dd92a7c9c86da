#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "cleaner/Cleaner.h"
#include "cookies/CookieDetail.h"
#include "cookies/CookieList.h"
#include "cookies/CookieSearch.h"
#include "cookies/DeleteCookieFiles.h"
#include "core/Autostart.h"
#include "core/Help.h"
#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "core/SpecialFolders.h"
#include "monitor/WatchFlags.h"
#include "monitor/WatchFunc.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "platform/Shell.h"
#include "platform/Texts.h"
#include "report/ChangeReports.h"
#include "report/PlaySoundFile.h"
#include "ui/FormMain.h"
#include "ui/MainLayout.h"

// The main window's event procedures.

namespace {

constexpr int EnterKey = 13;
constexpr int RightButton = 2;
constexpr int CookieNameField = 2;  // entry of Combo1
// The lists, as `ShowCookieDetail` tells them apart.
constexpr std::int32_t CookieList = 1;
constexpr std::int32_t SearchList = 2;

}  // namespace

// --- Birth and death -----------------------------------------------------------------------------

void FormMain::Form_Load() {
  const std::string command = platform::Command();
  if (platform::Trimmed(command) == "/1") StartHidden = true;
  ResolveProgramFolders();
  PublicDim.MsgEnabled = true;
  ResolveShellFolders(hWnd());
  LoadConfig();
  InitMainWindow();
  Combo1.ListIndex(CookieNameField);
  SetListStyle();
  TabStrip1_Click();
  PublicDim.CookieListStale = true;
  Show();
  FillTrayIconData();
  platform::TrayMenu(MenuPopup);
  platform::Shell_NotifyIconA(platform::NIM_ADD, PublicDim.TrayIconData);
  if (StartHidden) {
    Hide();
  } else {
    Show();
  }
  CmdStart_Click();
}

void FormMain::FillTrayIconData() {
  platform::NOTIFYICONDATA& data = PublicDim.TrayIconData;
  data.cbSize = sizeof data;
  data.hWnd = hWnd();
  data.uID = 1;
  data.uFlags = platform::NIF_MESSAGE | platform::NIF_ICON | platform::NIF_TIP;
  data.uCallbackMessage = platform::WM_MOUSEMOVE;
  data.hIcon = Image1.Picture();
  constexpr std::string_view Tip = "Quillmere";
  data.szTip.fill(' ');
  *std::copy(Tip.begin(), Tip.end(), data.szTip.begin()) = '\0';
}

void FormMain::Form_Unload() {
  if (!PublicDim.WatchStopping) StopWatch();
  SaveConfig();
  platform::Shell_NotifyIconA(platform::NIM_DELETE, PublicDim.TrayIconData);
  platform::End();
}

// --- The window ----------------------------------------------------------------------------------

void FormMain::InitMainWindow() {
  ListLog.Top(TabStrip1.Top() + 435);
  ListLog.Left(TabStrip1.Left() + 120);
  ListVCookie.Top(ListLog.Top());
  ListVCookie.Left(ListLog.Left());
  Picture1.Top(TabStrip1.Top() + 375);
  Picture1.Left(TabStrip1.Left() + 90);
  for (platform::PictureBox* panel : {&Picture2, &Picture3, &Picture4}) {
    panel->Top(Picture1.Top());
    panel->Left(Picture1.Left());
  }
  for (platform::PictureBox* panel : {&Picture1, &Picture2, &Picture3, &Picture4}) {
    panel->BackColor(BackColor());
  }
  if (!PublicDim.SaveLog) CheckLog.Value(1);
  if (PublicDim.ToTray) CheckTray.Value(1);
  if (PublicDim.PlaySound1) ChkSound1.Value(1);
  if (PublicDim.PlaySound2) ChkSound2.Value(1);
  if (AutostartEnabled()) CheckStart.Value(1);
  const std::string& folder = PublicDim.CookieDir;
  const std::string watched = platform::IsPath(folder) ? folder : "no folder: none was found";
  CmdStart.ToolTipText("Start watching " + watched);
  CmdStop.ToolTipText("Stop watching " + watched);
}

void FormMain::SetListStyle() {
  for (platform::ListView* list : {&ListVCookie, &ListVSearch}) {
    SetExtendedListStyle(*list, platform::LVS_EX_FULLROWSELECT);
    SetExtendedListStyle(*list, platform::LVS_EX_GRIDLINES);
  }
}

void FormMain::HideAllPanels() {
  ListLog.Visible(false);
  ListVCookie.Visible(false);
  for (platform::PictureBox* panel : {&Picture1, &Picture2, &Picture3, &Picture4}) {
    panel->Visible(false);
  }
}

void FormMain::TabStrip1_Click() {
  HideAllPanels();
  platform::Control* const pages[] = {&ListLog,  &ListVCookie, &Picture1,
                                      &Picture2, &Picture3,    &Picture4};
  const auto page = static_cast<std::size_t>(TabStrip1.SelectedItem() - 1);
  if (page < std::size(pages)) pages[page]->Visible(true);
}

void FormMain::SwitchTab(int by) {
  const int count = TabStrip1.Count();
  TabStrip1.SelectedItem((TabStrip1.SelectedItem() - 1 + by + count) % count + 1);
}

void FormMain::GoToSearch() {
  constexpr int SearchPage = 3;
  TabStrip1.SelectedItem(SearchPage);
  TextSearch.SetFocus();
  TextSearch.SelectAll();
}

void FormMain::Form_Resize() {
  if (PublicDim.ToTray && WindowState() == platform::vbMinimized) Hide();
  if (WindowState() == platform::vbMinimized) return;
  if (Width() < MinMainWidth) Width(MinMainWidth);
  if (Height() < MinMainHeight) Height(MinMainHeight);

  const MainLayout layout = LayOut(Width(), Height(), TabStrip1.Left(), TabStrip1.Top());
  const auto size = [](platform::Control& control, const MainLayout::Size& to) {
    control.Width(to.Width);
    control.Height(to.Height);
  };
  size(TabStrip1, layout.TabStrip1);
  size(ListLog, layout.Lists);
  size(ListVCookie, layout.Lists);
  size(Picture1, layout.Panels);
  size(ListVSearch, layout.SearchList);
  size(Picture2, layout.Panels);
  size(Frame1, layout.Lists);
  size(Picture3, layout.Panels);
  size(Picture4, layout.Panels);
}

// --- The tray ------------------------------------------------------------------------------------

void FormMain::Form_MouseMove(float X) {
  const float pixels =
      ScaleMode() == 3 ? X : X / static_cast<float>(platform::Screen().TwipsPerPixelX);
  switch (static_cast<std::uint32_t>(std::lrint(pixels))) {
    case platform::WM_LBUTTONUP:
    case platform::WM_LBUTTONDBLCLK:
      return Menu_Show_Click();
    case platform::WM_RBUTTONUP:
      platform::SetForegroundWindow(hWnd());
      return PopupMenu(MenuPopup);
    default:
      return;
  }
}

void FormMain::Menu_Show_Click() {
  WindowState(platform::vbNormalState);
  platform::SetForegroundWindow(hWnd());
  Show();
  platform::AppActivate("Quillmere");
}

void FormMain::Menu_Exit_Click() { Unload(); }

// --- The watch -----------------------------------------------------------------------------------

void FormMain::CmdStart_Click() { StartClicked(Watch()); }
void FormMain::CmdStop_Click() { StopClicked(Watch()); }
void FormMain::TimerStart_Timer() { StartTick(Watch()); }
void FormMain::TimerCompare_Timer() {
  if (PublicDim.ChangePending) ExpectCookieList(WindowState());
  CompareTick(*this);
  if (PublicDim.CookieListStale) ExpectCookieList(WindowState());
}

void FormMain::ReportModified(std::size_t oldRow, std::size_t newRow) {
  TellOfModified(ListLog, PublicDim.KnownRows[oldRow], PublicDim.CurrentRows[newRow]);
}

void FormMain::ReportAdded(std::size_t newRow) {
  TellOfAdded(ListLog, PublicDim.CurrentRows[newRow]);
}

void FormMain::ReportRemoved(std::size_t oldRow) {
  TellOfRemoved(ListLog, PublicDim.KnownRows[oldRow]);
}

// --- The cookie lists ----------------------------------------------------------------------------

void FormMain::TimerCookie_Timer() {
  CookieListTick(ListVCookie, WindowState());
  if (WatchFlags.ScanRunning) ExpectCookieList(WindowState());
}

void FormMain::CmdSearch_Click() { SearchCookies(TextSearch, Combo1.ListIndex(), ListVSearch); }

void FormMain::TextSearch_KeyPress(std::int16_t KeyAscii) {
  if (KeyAscii == EnterKey) CmdSearch_Click();
}

void FormMain::ListVCookie_ColumnClick(int Index) {
  ColumnClick(ListVCookie, ColumnAscending, Index);
}

void FormMain::ListVSearch_ColumnClick(int Index) {
  ColumnClick(ListVSearch, ColumnAscending, Index);
}

void FormMain::ListVCookie_DblClick() { ShowCookieDetail(CookieList); }
void FormMain::ListVSearch_DblClick() { ShowCookieDetail(SearchList); }

void FormMain::ListVCookie_KeyPress(std::int16_t KeyAscii) {
  if (KeyAscii == EnterKey) ShowCookieDetail(CookieList);
}

void FormMain::ListVSearch_KeyPress(std::int16_t KeyAscii) {
  if (KeyAscii == EnterKey) ShowCookieDetail(SearchList);
}

void FormMain::ListVCookie_MouseUp(std::int16_t Button) {
  if (ListVCookie.Count() > 0 && Button == RightButton) PopupMenu(MenuCookie);
}

void FormMain::ListVSearch_MouseUp(std::int16_t Button) {
  if (ListVSearch.Count() > 0 && Button == RightButton) PopupMenu(MenuSearch);
}

void FormMain::Menu_View_Click() { ShowCookieDetail(CookieList); }
void FormMain::Menu_ViewSearch_Click() { ShowCookieDetail(SearchList); }
void FormMain::Menu_Delete_Click() { DeleteSelectedCookieFiles(ListVCookie); }
void FormMain::Menu_DelSearch_Click() { DeleteSelectedCookieFiles(ListVSearch); }

void FormMain::ShowCookieDetail(std::int32_t Which) {
  OpenCookieDetail(Which == CookieList ? ListVCookie : ListVSearch, *this);
}

// --- Tools, sound, options, information ----------------------------------------------------------

void FormMain::CmdClean_Click() { Clean({Check1, Check2, Check3}, ListLog); }

void FormMain::CmdSound1_Click() { PlaySoundRegardless(1); }
void FormMain::CmdSound2_Click() { PlaySoundRegardless(2); }

void FormMain::ChkSound1_Click() { PublicDim.PlaySound1 = ChkSound1.Value() == 1; }
void FormMain::ChkSound2_Click() { PublicDim.PlaySound2 = ChkSound2.Value() == 1; }
void FormMain::CheckLog_Click() { PublicDim.SaveLog = CheckLog.Value() != 1; }
void FormMain::CheckTray_Click() { PublicDim.ToTray = CheckTray.Value() == 1; }
void FormMain::CheckStart_Click() { EnableAutostart(CheckStart.Value() == 1); }

void FormMain::CmdHelp_Click() { ShowHelp(hWnd()); }

void FormMain::CmdAbout_Click() { About.Show(this); }

void FormMain::Menu_Help_Click() { CmdHelp_Click(); }
void FormMain::Menu_About_Click() { CmdAbout_Click(); }
