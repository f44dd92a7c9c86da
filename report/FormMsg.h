#pragma once

#include "platform/Forms.h"

/// The popup that tells of one change at the corner of the screen. It closes by itself at its sixth
/// tick; each stands for itself, and all take the same place.
class FormMsg : public platform::Form {
 public:
  FormMsg();

 protected:
  void Form_Load() override;

 private:
  void CmdClose_Click() { Unload(); }
  void CmdView_Click();
  void Timer1_Timer();

  platform::Label Label1;
  platform::CommandButton CmdClose;
  platform::CommandButton CmdView;
  platform::Timer Timer1;
  int Ticks = 0;
};

/// Opens a popup for the change that the `Msg` values of `PublicDim` tell of.
void ShowChangePopup();
