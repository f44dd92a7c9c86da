#include "platform/linux/ThemeColours.h"

#include <QColor>
#include <QPalette>
#include <QVariant>

#include "platform/Forms.h"

namespace platform {

namespace {

constexpr std::uint32_t ThemeBit = 0x80000000;
constexpr const char* ThemeColourOfBack = "themeColourOfBack";

QColor ThemeColour(std::uint32_t colour, const QWidget& widget) {
  const QPalette palette = widget.window()->palette();
  switch (colour) {
    case vbScrollBars:
      return palette.color(QPalette::Window);
    case vbTitleBarText:
      return Qt::white;  // As on a standard desktop: the toolkit can't tell.
    default:
      return QColor::fromRgb(static_cast<QRgb>(colour));
  }
}

void PaintBack(QWidget& widget, std::uint32_t colour) {
  const QColor wanted = ThemeColour(colour, widget);
  widget.setAutoFillBackground(true);
  const QWidget* holder = widget.parentWidget();
  const QPalette inherited = holder ? holder->palette() : QPalette();
  if (inherited.color(widget.backgroundRole()).rgb() == wanted.rgb()) {
    widget.setPalette(QPalette());  // the colour of what holds it: follows a change of theme
    return;
  }
  QPalette palette = widget.palette();
  palette.setColor(widget.backgroundRole(), wanted);
  widget.setPalette(palette);
}

/// A colour that stays readable as text on `background`: `wanted`, or a lighter shade of it.
QColor ReadableOn(const QColor& wanted, const QColor& background) {
  constexpr int Middle = 128;
  constexpr int LightShade = 205;
  if (background.lightness() >= Middle || wanted.lightness() > Middle) return wanted;
  return QColor::fromHsl(wanted.hslHue(), wanted.hslSaturation(), LightShade);
}

}  // namespace

void SetBackColour(QWidget& widget, std::uint32_t colour) {
  const bool isTheme = (colour & ThemeBit) != 0;
  widget.setProperty(ThemeColourOfBack, isTheme ? QVariant(colour) : QVariant());
  PaintBack(widget, colour);
}

void SetTextColour(QWidget& widget, std::uint32_t colour) {
  QPalette palette = widget.palette();
  palette.setColor(widget.foregroundRole(),
                   ReadableOn(ThemeColour(colour, widget), palette.color(widget.backgroundRole())));
  widget.setPalette(palette);
}

void RenewThemeColours(const QWidget& window) {
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    const QVariant colour = widget->property(ThemeColourOfBack);
    if (colour.isValid()) PaintBack(*widget, colour.toUInt());
  }
}

}  // namespace platform
