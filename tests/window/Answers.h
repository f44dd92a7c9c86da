#pragma once

#include <optional>

#include "platform/Forms.h"
#include "tests/support/Application.h"

/// While it lives, every question is answered with Yes, and what only tells is closed.
class Answers {
 public:
  Answers() {
    timer_.Tick = [this] {
      const std::optional<int> box = machine::OpenBox();
      if (!box) return;
      ++Asked;
      machine::PressInBox(box == platform::MB_OK ? platform::IDOK : platform::IDYES);
    };
  }

  int Asked = 0;

 private:
  platform::Timer timer_{1, true};
};
