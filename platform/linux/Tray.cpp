#include <cstdint>
#include <memory>

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QSystemTrayIcon>

#include "platform/Forms.h"
#include "platform/Shell.h"
#include "platform/linux/FormWidget.h"
#include "platform/linux/Handles.h"
#include "platform/linux/TrayHosts.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

/// The menu for trays that draw menus themselves.
QPointer<QMenu>& MenuForTray() {
  static QPointer<QMenu> menu;
  return menu;
}

/// The number that a button's press has; its release and its second press follow.
std::uint32_t PressMessage(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return 0x201;
    case Qt::RightButton:
      return 0x204;
    case Qt::MiddleButton:
      return 0x207;
    default:
      return 0;
  }
}

/// The icon. The toolkit settles once, when it makes its first icon, which kind of tray it serves,
/// so that is put off until there is one.
class TrayIcon : public QObject {
 public:
  explicit TrayIcon(const NOTIFYICONDATA& data) : data_(data) {
    connect(&hosts_, &TrayHosts::Changed, this, &TrayIcon::Appear);
    qApp->installEventFilter(this);
    Appear();
  }

  void Disappear() {
    data_.hWnd = 0;
    qApp->removeEventFilter(this);
    disconnect(&hosts_, nullptr, this, nullptr);
    if (icon_) icon_->hide();
  }

 protected:
  /// An icon inside a tray is a window of this program and has its mouse events itself. The toolkit
  /// would make an activation of a press already.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (!event->isInputEvent() || !watched->inherits("QSystemTrayIconSys")) return false;
    const auto* mouse = dynamic_cast<QMouseEvent*>(event);
    if (!mouse) return false;
    const std::uint32_t press = PressMessage(mouse->button());
    // A button that is held brings its events here from anywhere.
    const bool isOver = static_cast<QWidget*>(watched)->rect().contains(mouse->pos());
    switch (event->type()) {
      case QEvent::MouseMove:
        if (isOver) Deliver(WM_MOUSEMOVE);
        return false;
      case QEvent::MouseButtonPress:
        if (press) Deliver(press);
        return true;
      case QEvent::MouseButtonRelease:
        if (press && isOver) Deliver(press + 1);
        return true;
      case QEvent::MouseButtonDblClick:
        if (press) Deliver(press + 2);
        return true;
      default:
        return false;
    }
  }

 private:
  void Appear() {
    if (!icon_ && (hosts_.Notifies() || hosts_.Embeds())) MakeIcon();
    const bool isSeen = icon_ && (isNotifier_ ? hosts_.Notifies() : hosts_.Embeds());
    // Without the icon nothing leads back to a window that is hidden.
    if (Form* form = Window()) static_cast<FormWidget*>(Widget(*form))->HideInTaskbar(!isSeen);
  }

  void MakeIcon() {
    isNotifier_ = hosts_.Notifies();
    icon_ = std::make_unique<QSystemTrayIcon>(PictureByHandle(data_.hIcon));
    icon_->setToolTip(FromText(data_.szTip.data()));
    if (isNotifier_ && MenuForTray()) {
      menu_ = std::make_unique<QMenu>();
      menu_->addActions(MenuForTray()->actions());
      icon_->setContextMenu(menu_.get());
    }
    connect(icon_.get(), &QSystemTrayIcon::activated, this, &TrayIcon::Activated);
    icon_->show();
  }

  /// The other kind of tray tells of whole clicks.
  void Activated(QSystemTrayIcon::ActivationReason reason) {
    switch (reason) {
      case QSystemTrayIcon::Trigger:
        return Deliver(WM_LBUTTONUP);
      case QSystemTrayIcon::DoubleClick:
        return Deliver(WM_LBUTTONDBLCLK);
      case QSystemTrayIcon::Context:
        return Deliver(WM_RBUTTONUP);
      default:
        return;
    }
  }

  /// Hands an event on once the icon's own procedures have returned: the window may open a menu
  /// over them, or remove the icon.
  void Deliver(std::uint32_t event) {
    if (data_.uCallbackMessage != WM_MOUSEMOVE) return;
    const auto arrive = [this, event] {
      if (Form* form = Window()) {
        form->Form_MouseMove(static_cast<float>(ToTwips(static_cast<int>(event))));
      }
    };
    QMetaObject::invokeMethod(this, arrive, Qt::QueuedConnection);
  }

  /// The one that the icon's events go to, while it is there.
  Form* Window() const { return dynamic_cast<Form*>(ControlByHandle(data_.hWnd)); }

  NOTIFYICONDATA data_;
  TrayHosts hosts_;
  bool isNotifier_ = false;  // the kind of tray that the toolkit has settled on
  std::unique_ptr<QMenu> menu_;
  std::unique_ptr<QSystemTrayIcon> icon_;
};

/// The icon, or none while no window has added one.
std::unique_ptr<TrayIcon>& Icon() {
  static auto& icon = *new std::unique_ptr<TrayIcon>;  // what is there at exit is not freed
  return icon;
}

}  // namespace

void TrayMenu(const Menu& menu) { MenuForTray() = static_cast<QMenu*>(Widget(menu.Native())); }

int Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  if (ProcessEnds) return 0;  // and the icon with it
  if (message == NIM_DELETE) {
    if (!Icon()) return 0;
    Icon()->Disappear();
    Icon().release()->deleteLater();  // an event of its own may be what removes it
    return 1;
  }
  if (message != NIM_ADD || Icon()) return 0;
  Icon() = std::make_unique<TrayIcon>(data);
  return 1;
}

}  // namespace platform
