#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <QObject>

namespace platform {

/// The trays that the desktop has, of two kinds.
class TrayHosts : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  TrayHosts();
  /// The older kind, which takes an icon as a window of X11.
  bool Embeds() const { return embedding_ != XCB_NONE; }
  /// The newer kind, which is told of an icon (StatusNotifier) and draws it and its menu by itself.
  bool Notifies() const { return notifies_; }

 signals:
  /// One came or went.
  void Changed();

 private:
  void LookForEmbedding();
  Q_SLOT void AskForNotifier();
  bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;

  xcb_atom_t selection_ = XCB_NONE;
  xcb_atom_t manager_ = XCB_NONE;
  xcb_window_t embedding_ = XCB_NONE;
  QDBusServiceWatcher notifierWatcher_;
  bool notifies_ = false;
};

}  // namespace platform
