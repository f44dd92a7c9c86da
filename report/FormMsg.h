#pragma once

#include <memory>
#include <string>

#include "platform/Forms.h"

/// The popup that tells of one change at the corner of the screen. It closes by itself at its sixth
/// tick; each stands for itself, and all take the same place.
class FormMsg : public platform::Form {
 public:
  FormMsg();

 protected:
  void Form_Load() override;
  void Form_FirstShow() override;
  void Form_PutAway() override { Shown.reset(); }

 private:
  struct Controls {
    explicit Controls(FormMsg& form);

    platform::Label Label1;
    platform::CommandButton CmdClose;
    platform::CommandButton CmdView;
  };

  void CmdClose_Click() { Unload(); }
  void CmdView_Click();
  void Timer1_Timer();

  platform::Timer Timer1;
  int Ticks = 0;
  // What the controls show is settled when the window loads.
  std::string Text;
  bool CanView = false;
  std::unique_ptr<Controls> Shown;
};

/// Opens a popup for the change that the `Msg` values of `PublicDim` tell of.
void ShowChangePopup();
