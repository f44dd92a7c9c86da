#include "cookies/FormView.h"

#include "cookies/CookieDetail.h"
#include "core/Help.h"
#include "core/Joined.h"
#include "core/PublicDim.h"

namespace {

constexpr platform::FormDesign ViewDesign = {.Name = "FormView",
                                             .Caption = "Detail",
                                             .ClientWidth = 7065,
                                             .ClientHeight = 5415,
                                             .Border = platform::BorderStyle::FixedSingle,
                                             .MaxButton = false};

}  // namespace

FormView::FormView()
    : Form(ViewDesign),
      Label1(
          *this,
          {.Name = "Label1", .Caption = "Cookie file:", .At = {180, 255, 780, 195}, .TabIndex = 0}),
      Text1{platform::TextBox(*this, {.Name = "Text1(0)",
                                      .At = {990, 195, 5985, 300},
                                      .TabIndex = 1,
                                      .AccessibleName = "Cookie file"}),
            platform::TextBox(*this, {.Name = "Text1(1)",
                                      .At = {990, 555, 2790, 300},
                                      .TabIndex = 2,
                                      .AccessibleName = "Modified"}),
            platform::TextBox(*this, {.Name = "Text1(2)",
                                      .At = {4500, 555, 2475, 300},
                                      .TabIndex = 3,
                                      .AccessibleName = "Size"})},
      Text2(*this,
            {.Name = "Text2",
             .At = {75, 930, 6915, 3840},
             .TabIndex = 4,
             .AccessibleName = "Details"},
            platform::TextBox::Kind::MultiLine),
      Command1(
          *this,
          {.Name = "Command1", .Caption = "&Close", .At = {2895, 4920, 1260, 345}, .TabIndex = 5}),
      Label2(*this,
             {.Name = "Label2", .Caption = "Modified:", .At = {180, 585, 645, 195}, .TabIndex = 6}),
      Label3(*this,
             {.Name = "Label3", .Caption = "Size:", .At = {4050, 585, 345, 195}, .TabIndex = 7}) {
  for (platform::TextBox& box : Text1) {
    box.Locked(true);
    box.BackColor(platform::vbScrollBars);
  }
  Text2.Locked(true);
  Command1.Cancel();
  Accelerator(platform::vbKeyF1, 0, [this] { ShowHelp(hWnd()); });
  Command1.Click = [this] { Command1_Click(); };
}

void FormView::Form_Load() {
  if (PublicDim.DetailRows.empty()) return;
  const CookieRow& first = PublicDim.DetailRows.front();
  Text1[0].Text(Joined({PublicDim.CookieDir, first.CookieFile}));
  Text1[1].Text(first.Modified);
  Text1[2].Text(Joined({first.FileSize, " bytes"}));
  Caption(Joined({"Detail - ", first.CookieFile}));
  Text2.Text(DetailText(PublicDim.DetailRows));
}

void FormView::Command1_Click() { Unload(); }
