#include "ui/FormAbout.h"

#include "core/Help.h"
#include "platform/Application.h"
#include "platform/Shell.h"

namespace {

constexpr platform::FormDesign AboutBox{.Name = "FormAbout",
                                        .Caption = "About Quillmere",
                                        .ClientWidth = 5490,
                                        .ClientHeight = 3615,
                                        .Border = platform::BorderStyle::FixedSingle,
                                        .MinButton = false,
                                        .MaxButton = false};
constexpr const char* Mailbox = "support@quillmere.example";
constexpr const char* WebAddress = "https://www.quillmere.example/";
constexpr std::uint32_t Grey = 0x808080;
constexpr std::uint32_t White = 0xFFFFFF;
constexpr std::uint32_t Black = 0x000000;

}  // namespace

FormAbout::FormAbout()
    : Form(AboutBox),
      Command2(
          *this,
          {.Name = "Command2", .Caption = "&OK", .At = {3420, 3000, 1095, 360}, .TabIndex = 0}),
      LabelEmail(
          *this,
          {.Name = "LabelEmail", .Caption = Mailbox, .At = {2205, 1980, 1605, 195}, .TabIndex = 1}),
      LabelWeb(*this, {.Name = "LabelWeb",
                       .Caption = WebAddress,
                       .At = {2205, 2310, 2415, 195},
                       .TabIndex = 2}),
      Label1(*this,
             {.Name = "Label1", .Caption = "E-mail:", .At = {1215, 2010, 465, 195}, .TabIndex = 3}),
      Label2(
          *this,
          {.Name = "Label2", .Caption = "Web Site:", .At = {975, 2325, 705, 195}, .TabIndex = 4}),
      Picture1(*this, {.Name = "Picture1", .At = {105, 135, 5280, 1650}, .TabIndex = 5}),
      Image1(Picture1,
             {.Name = "Image1", .At = {210, 45, 1665, 1470}, .AccessibleName = "Quillmere"},
             "about.gif"),
      Label3(Picture1, {.Name = "Label3",
                        .Caption = "Quillmere " QUILLMERE_VERSION "\r\n"
                                   "The Quillmere Project\r\n"
                                   "Free software under the MIT licence\r\n",
                        .At = {2400, 270, 2805, 1020},
                        .TabIndex = 6}),
      Line1(*this, {.Name = "Line1", .At = {90, 2730, 5300, 0}}, Grey),
      Line2(*this, {.Name = "Line2", .At = {90, 2760, 5300, 0}}, platform::vbTitleBarText) {
  // The picture is drawn on white; a dark panel would frame it.
  Picture1.BackColor(White);
  Label3.BackColor(platform::vbTitleBarText);
  Label3.ForeColor(Black);
  Label1.AutoSize();
  Label2.AutoSize();
  for (platform::Label* link : {&LabelEmail, &LabelWeb}) {
    link->FontUnderline(true);
    link->AutoSize();
    link->Link();
  }
  LabelEmail.Click = [this] { LabelEmail_Click(); };
  LabelWeb.Click = [this] { LabelWeb_Click(); };
  Command2.Click = [this] { Command2_Click(); };
  Command2.Cancel();
  Accelerator(platform::vbKeyF1, 0, [this] { ShowHelp(hWnd()); });
}

void FormAbout::Command2_Click() { Unload(); }
void FormAbout::LabelEmail_Click() { Open(std::string("mailto:") + Mailbox); }
void FormAbout::LabelWeb_Click() { Open(WebAddress); }

void FormAbout::Open(const std::string& target) {
  platform::ShellExecuteA(hWnd(), "open", target, "", platform::AppPath(), platform::SW_SHOWNORMAL);
}
