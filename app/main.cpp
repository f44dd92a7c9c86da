#include <memory>

#include "platform/Application.h"
#include "ui/FormMain.h"

int main(int argc, char** argv) {
  return platform::RunApplication(argc, argv, [] { return std::make_unique<FormMain>(); });
}
