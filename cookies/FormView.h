#pragma once

#include <array>

#include "platform/Forms.h"

/// The detail window: one cookie file's path, time and size, and all its cookies. Filled once, from
/// `DetailRows`, when it is loaded.
class FormView : public platform::Form {
 public:
  FormView();

  void Form_Load() override;

 private:
  void Command1_Click();

  platform::Label Label1;
  std::array<platform::TextBox, 3> Text1;
  platform::TextBox Text2;
  platform::CommandButton Command1;
  platform::Label Label2;
  platform::Label Label3;
};
