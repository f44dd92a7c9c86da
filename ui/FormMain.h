#pragma once

#include <cstddef>
#include <cstdint>

#include "cookies/modSortListView.h"
#include "monitor/Comparison.h"
#include "monitor/WatchControl.h"
#include "platform/Forms.h"
#include "platform/ListView.h"
#include "ui/FormAbout.h"

/// The program's main window. Its event procedures are a few lines each: the work is in the feature
/// folders. The controls are public, as in any form, for the window's tests.
class FormMain : public platform::Form, private DifferenceReports {
 public:
  FormMain();

  void Form_Load() override;
  void Form_Unload() override;
  void Form_Resize() override;
  void Form_MouseMove(float X) override;

  platform::CommandButton CmdStart;
  platform::CommandButton CmdStop;
  platform::CommandButton CmdHelp;
  platform::CommandButton CmdAbout;
  platform::TabStrip TabStrip1;
  platform::ListBox ListLog;
  platform::ListView ListVCookie;

  platform::PictureBox Picture1;  // search
  platform::ListView ListVSearch;
  platform::Label Label1;
  platform::TextBox TextSearch;
  platform::ComboBox Combo1;
  platform::Label Label2;
  platform::CommandButton CmdSearch;

  platform::PictureBox Picture2;  // tools
  platform::Frame Frame1;
  platform::CheckBox Check1;
  platform::CheckBox Check3;
  platform::CheckBox Check2;
  platform::CommandButton CmdClean;

  platform::PictureBox Picture3;  // sound
  platform::CheckBox ChkSound1;
  platform::CheckBox ChkSound2;
  platform::CommandButton CmdSound1;
  platform::CommandButton CmdSound2;

  platform::PictureBox Picture4;  // options
  platform::CheckBox CheckLog;
  platform::CheckBox CheckStart;
  platform::CheckBox CheckTray;

  platform::Image Image1;  // the tray icon
  platform::Timer TimerCompare;
  platform::Timer TimerCookie;
  platform::Timer TimerStart;
  platform::Menu MenuCookie;
  platform::Menu MenuSearch;
  platform::Menu MenuPopup;

 private:
  void ConnectEvents();
  void ConnectListEvents();
  void ConnectKeys();

  void InitMainWindow();
  void SetListStyle();
  void HideAllPanels();
  void TabStrip1_Click();
  /// The tab so many further on, in a circle.
  void SwitchTab(int by);
  void GoToSearch();
  void FillTrayIconData();

  void CmdStart_Click();
  void CmdStop_Click();
  void CmdHelp_Click();
  void CmdAbout_Click();
  void CmdSearch_Click();
  void TextSearch_KeyPress(std::int16_t KeyAscii);
  void CmdClean_Click();
  void CmdSound1_Click();
  void CmdSound2_Click();
  void ChkSound1_Click();
  void ChkSound2_Click();
  void CheckLog_Click();
  void CheckStart_Click();
  void CheckTray_Click();
  void TimerCompare_Timer();
  void TimerCookie_Timer();
  void TimerStart_Timer();

  void ListVCookie_ColumnClick(int Index);
  void ListVCookie_DblClick();
  void ListVCookie_KeyPress(std::int16_t KeyAscii);
  void ListVCookie_MouseUp(std::int16_t Button);
  void ListVSearch_ColumnClick(int Index);
  void ListVSearch_DblClick();
  void ListVSearch_KeyPress(std::int16_t KeyAscii);
  void ListVSearch_MouseUp(std::int16_t Button);
  /// `Which` is 1 for `ListVCookie`, 2 for `ListVSearch`.
  void ShowCookieDetail(std::int32_t Which);

  void Menu_View_Click();
  void Menu_Delete_Click();
  void Menu_ViewSearch_Click();
  void Menu_DelSearch_Click();
  void Menu_Show_Click();
  void Menu_Help_Click();
  void Menu_About_Click();
  void Menu_Exit_Click();

  void ReportModified(std::size_t oldRow, std::size_t newRow) override;
  void ReportAdded(std::size_t newRow) override;
  void ReportRemoved(std::size_t oldRow) override;

  WatchControls Watch() { return {CmdStart, CmdStop, TimerStart}; }

  FormAbout About;
  ColumnDirections ColumnAscending{};
  bool StartHidden = false;
};
