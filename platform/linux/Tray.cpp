#include <cstdint>
#include <memory>

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QSystemTrayIcon>

#include "platform/Forms.h"
#include "platform/Shell.h"
#include "platform/linux/Handles.h"
#include "platform/linux/Widgets.h"
#include "platform/linux/XServer.h"

namespace platform {

namespace {

const QString NotifierWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");

/// The menu for trays that draw menus themselves.
QPointer<QMenu>& MenuForTray() {
  static QPointer<QMenu> menu;
  return menu;
}

/// Tells when a tray of the older kind, which takes an icon as a window of X11, is there.
class EmbeddingTray : public QObject, public QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  EmbeddingTray() {
    if (!connection_) return;
    selection_ = XAtom("_NET_SYSTEM_TRAY_S0");
    manager_ = XAtom("MANAGER");
    qApp->installNativeEventFilter(this);
  }

  bool IsThere() const {
    if (!connection_) return false;
    const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_, xcb_get_selection_owner(connection_, selection_), nullptr));
    return reply && reply->owner != XCB_NONE;
  }

  bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
    constexpr std::uint8_t SentByClient = 0x80;
    const auto* event = static_cast<xcb_generic_event_t*>(message);
    if ((event->response_type & ~SentByClient) != XCB_CLIENT_MESSAGE) return false;
    const auto* news = static_cast<xcb_client_message_event_t*>(message);
    if (news->type == manager_ && news->data.data32[1] == selection_) emit Came();
    return false;
  }

 signals:
  void Came();

 private:
  xcb_connection_t* const connection_ = XConnection();
  xcb_atom_t selection_ = XCB_NONE;
  xcb_atom_t manager_ = XCB_NONE;
};

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
  explicit TrayIcon(const NOTIFYICONDATA& data)
      : data_(data),
        notifierWatcher_(NotifierWatcher, QDBusConnection::sessionBus(),
                         QDBusServiceWatcher::WatchForRegistration) {
    connect(&notifierWatcher_, &QDBusServiceWatcher::serviceRegistered, this, &TrayIcon::Appear);
    connect(&embedding_, &EmbeddingTray::Came, this, &TrayIcon::Appear, Qt::QueuedConnection);
    qApp->installEventFilter(this);
    Appear();
  }

  void Disappear() {
    data_.hWnd = 0;
    qApp->removeEventFilter(this);
    disconnect(&notifierWatcher_, nullptr, this, nullptr);
    disconnect(&embedding_, nullptr, this, nullptr);
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
    switch (event->type()) {
      case QEvent::MouseMove:
        Deliver(WM_MOUSEMOVE);
        return false;
      case QEvent::MouseButtonPress:
        if (press) Deliver(press);
        return true;
      case QEvent::MouseButtonRelease:
        if (press) Deliver(press + 1);
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
    if (icon_) return;
    const QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    const bool drawsMenus = bus && bus->isServiceRegistered(NotifierWatcher);
    if (!drawsMenus && !embedding_.IsThere()) return;
    icon_ = std::make_unique<QSystemTrayIcon>(PictureByHandle(data_.hIcon));
    icon_->setToolTip(FromText(data_.szTip.data()));
    if (drawsMenus && MenuForTray()) {
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
    const auto arrive = [window = data_.hWnd, event] {
      auto* form = dynamic_cast<Form*>(ControlByHandle(window));
      if (form) {
        form->Form_MouseMove(static_cast<float>(ToTwips(static_cast<int>(event))));
      }
    };
    QMetaObject::invokeMethod(this, arrive, Qt::QueuedConnection);
  }

  NOTIFYICONDATA data_;
  QDBusServiceWatcher notifierWatcher_;
  EmbeddingTray embedding_;
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

#include "Tray.moc"
