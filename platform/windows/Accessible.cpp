#include "platform/windows/SystemWindows.h"

#include <objidl.h>
#include <oleacc.h>

#include "platform/windows/Widget.h"

namespace platform {

namespace {

void Annotate(HWND window, const MSAAPROPID& property, const std::string& text) {
  static IAccPropServices* const services = [] {
    IAccPropServices* made = nullptr;
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                     reinterpret_cast<void**>(&made));
    return made;
  }();
  if (services == nullptr) return;  // Wine 8 has none
  services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, property,
                           Wide(text).c_str());
}

}  // namespace

void NameForReaders(HWND window, const std::string& name) {
  Annotate(window, PROPID_ACC_NAME, name);
}

void DescribeForReaders(HWND window, const std::string& text) {
  Annotate(window, PROPID_ACC_DESCRIPTION, text);
}

}  // namespace platform
