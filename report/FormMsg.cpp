#include "report/FormMsg.h"

#include <memory>

#include "cookies/CookieDetail.h"
#include "cookies/FormView.h"
#include "core/PublicDim.h"

namespace {

constexpr platform::FormDesign Popup{.Name = "FormMsg",
                                     .Caption = "Quillmere",
                                     .ClientWidth = 3435,
                                     .ClientHeight = 1365,
                                     .Border = platform::BorderStyle::FixedDialog,
                                     .MinButton = false,
                                     .MaxButton = false,
                                     .ShowInTaskbar = false,
                                     .CenterScreen = false,
                                     .ShowWithoutActivating = true};
constexpr int TickMilliseconds = 1000;
constexpr int LastTick = 5;
constexpr int RightMargin = 35;    // twips to the screen's right edge
constexpr int BottomMargin = 450;  // twips to its bottom edge
constexpr std::uint32_t Blue = 0x0000FF;

}  // namespace

FormMsg::FormMsg() : Form(Popup), Timer1(TickMilliseconds, true) {
  Timer1.Tick = [this] { Timer1_Timer(); };
}

FormMsg::Controls::Controls(FormMsg& form)
    : Label1(form,
             {.Name = "Label1", .Caption = "Msg", .At = {180, 165, 3045, 630}, .TabIndex = 0}),
      CmdClose(
          form,
          {.Name = "CmdClose", .Caption = "&Close", .At = {1890, 840, 960, 360}, .TabIndex = 1}),
      CmdView(form,
              {.Name = "CmdView", .Caption = "&View", .At = {585, 840, 960, 360}, .TabIndex = 2}) {
  Label1.Centered();
  Label1.WordWrap();
  Label1.ForeColor(Blue);
  Label1.Caption(form.Text);
  if (!form.CanView) CmdView.Enabled(false);
  CmdClose.Cancel();
  CmdClose.Click = [&form] { form.CmdClose_Click(); };
  CmdView.Click = [&form] { form.CmdView_Click(); };
}

void FormMsg::Form_Load() {
  const platform::ScreenInfo screen = platform::Screen();
  platform::SetWindowPos(hWnd(), platform::HWND_TOPMOST, Left() / screen.TwipsPerPixelX,
                         Top() / screen.TwipsPerPixelY, Width() / screen.TwipsPerPixelX,
                         Height() / screen.TwipsPerPixelY, 0);
  Text = PublicDim.MsgText;
  CanView = PublicDim.MsgCanView;
  Ticks = 0;
  Left(screen.Width - Width() - RightMargin);
  Top(screen.Height - Height() - BottomMargin);
}

void FormMsg::Form_FirstShow() { Shown = std::make_unique<Controls>(*this); }

void FormMsg::Timer1_Timer() {
  Ticks += 1;
  if (Ticks > LastTick) Unload();
}

void FormMsg::CmdView_Click() {
  ReadDetailRows(std::string(PublicDim.MsgFileName), PublicDim.MsgFileSize,
                 PublicDim.MsgFileModified);
  Unload();
  platform::ShowNew(std::make_unique<FormView>());
}

void ShowChangePopup() {
  if (PublicDim.MsgEnabled) platform::ShowNew(std::make_unique<FormMsg>());
}
