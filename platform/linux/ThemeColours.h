#pragma once

#include <cstdint>

#include <QWidget>

namespace platform {

/// Gives a widget a background of that colour; one of the theme follows a change of it.
void SetBackColour(QWidget& widget, std::uint32_t colour);

/// Gives a widget's text that colour, or a shade of it that can be read on the widget's background.
void SetTextColour(QWidget& widget, std::uint32_t colour);

/// Gives the controls of a window the theme's present colours where they have colours of the theme.
void RenewThemeColours(const QWidget& window);

}  // namespace platform
