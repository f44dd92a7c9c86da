#pragma once

#include <string>
#include <string_view>

#include <QGuiApplication>
#include <QPoint>
#include <QScreen>
#include <QString>
#include <QWidget>

#include "platform/Forms.h"
#include "platform/common/Twips.h"

// What the control implementations share: the way from a handle to its widget and back.

namespace platform {

inline QWidget* Widget(NativeWidget* native) { return reinterpret_cast<QWidget*>(native); }
inline QWidget* Widget(const Control& control) { return Widget(control.Native()); }
inline NativeWidget* Native(QWidget* widget) { return reinterpret_cast<NativeWidget*>(widget); }

/// Where places count from, in the toolkit's terms: a window's from the primary screen's corner.
inline QPoint Origin(const QWidget& widget) {
  return widget.isWindow() ? QGuiApplication::primaryScreen()->geometry().topLeft() : QPoint();
}

inline QString FromText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string ToText(const QString& text) { return text.toStdString(); }

/// The process is on its way out and must hand out no more events.
inline bool ProcessEnds = false;

}  // namespace platform
