#pragma once

#include <string>
#include <string_view>

#include <QGuiApplication>
#include <QPoint>
#include <QScreen>
#include <QString>
#include <QWidget>

#include "platform/Forms.h"

// What the control implementations share: the way from a handle to its widget and back.

namespace platform {

/// A twip is 1/1440 inch and a device independent pixel 1/96 inch, at any scale of the screen.
inline constexpr int TwipsPerPixel = 15;

/// To the nearest pixel.
constexpr int ToPixels(int twips) {
  return twips >= 0 ? (twips + TwipsPerPixel / 2) / TwipsPerPixel
                    : (twips - TwipsPerPixel / 2) / TwipsPerPixel;
}
constexpr int ToTwips(int pixels) { return pixels * TwipsPerPixel; }

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
