#pragma once

#include <string>

#include "platform/Forms.h"

/// The about box: the program's name, its publisher's mailbox and web address. One shared instance.
class FormAbout : public platform::Form {
 public:
  FormAbout();

 private:
  void Command2_Click();
  void LabelEmail_Click();
  void LabelWeb_Click();
  void Open(const std::string& target);

  platform::CommandButton Command2;
  platform::Label LabelEmail;
  platform::Label LabelWeb;
  platform::Label Label1;
  platform::Label Label2;
  platform::PictureBox Picture1;
  platform::Image Image1;
  platform::Label Label3;
  platform::Line Line1;
  platform::Line Line2;
};
