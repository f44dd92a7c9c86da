#include <QSystemTrayIcon>
#include <memory>

#include "platform/Forms.h"
#include "platform/Shell.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

/// The icon, or none while no window has added one.
std::unique_ptr<QSystemTrayIcon>& Icon() {
  static std::unique_ptr<QSystemTrayIcon> icon;
  return icon;
}

/// Delivers one event of the icon the way the record asks for it.
void Deliver(const NOTIFYICONDATA& data, std::uint32_t event) {
  auto* form = dynamic_cast<Form*>(ControlByHandle(data.hWnd));
  if (!form || data.uCallbackMessage != WM_MOUSEMOVE) return;
  form->Form_MouseMove(static_cast<float>(ToTwips(static_cast<int>(event))));
}

void DeliverActivation(const NOTIFYICONDATA& data, QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::Trigger:
      return Deliver(data, WM_LBUTTONUP);
    case QSystemTrayIcon::DoubleClick:
      return Deliver(data, WM_LBUTTONDBLCLK);
    case QSystemTrayIcon::Context:
      return Deliver(data, WM_RBUTTONUP);
    default:
      return;
  }
}

}  // namespace

int Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  if (message == NIM_DELETE) {
    const bool was = Icon() != nullptr;
    Icon().reset();
    return was;
  }
  if (message != NIM_ADD || Icon()) return 0;
  Icon() = std::make_unique<QSystemTrayIcon>(PictureByHandle(data.hIcon));
  Icon()->setToolTip(FromText(data.szTip.data()));
  QObject::connect(Icon().get(), &QSystemTrayIcon::activated,
                   [data](QSystemTrayIcon::ActivationReason reason) {
                     DeliverActivation(data, reason);
                   });
  Icon()->show();
  return 1;
}

}  // namespace platform
