#include <algorithm>

#include <QPointer>
#include <QTimer>

#include "platform/Forms.h"
#include "platform/linux/CutText.h"
#include "platform/linux/FormWidget.h"
#include "platform/linux/Handles.h"
#include "platform/linux/ListText.h"
#include "platform/linux/ThemeColours.h"
#include "platform/linux/Widgets.h"

namespace platform {

Control::Control(NativeWidget* native) : native_(native), handle_(AddHandle(*this)) {}

Control::Control(Container& parent, const Design& design, NativeWidget* native) : Control(native) {
  QWidget* widget = Widget(native);
  widget->setObjectName(design.Name);
  widget->setAccessibleName(design.AccessibleName);
  // What the pointer does on a control is no event of the window that lies below.
  widget->setAttribute(Qt::WA_NoMousePropagation);
  Move(design.At);
  if (design.TabIndex >= 0) {
    static_cast<FormWidget*>(Widget(parent)->window())->AddTabStop(design.TabIndex, widget);
  }
}

Control::~Control() {
  RemoveHandle(handle_);
  delete Widget(native_);
}

int Control::Left() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->x() - Origin(*widget).x());
}

int Control::Top() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->y() - Origin(*widget).y());
}

int Control::Width() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->width()) + (widget->isWindow() ? FrameWidth : 0);
}

int Control::Height() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->height()) + (widget->isWindow() ? FrameHeight : 0);
}

void Control::Left(int twips) {
  QWidget* widget = Widget(*this);
  widget->move(ToPixels(twips) + Origin(*widget).x(), widget->y());
}

void Control::Top(int twips) {
  QWidget* widget = Widget(*this);
  widget->move(widget->x(), ToPixels(twips) + Origin(*widget).y());
}

void Control::Width(int twips) {
  QWidget* widget = Widget(*this);
  const int client = twips - (widget->isWindow() ? FrameWidth : 0);
  widget->resize(std::max(0, ToPixels(client)), widget->height());
}

void Control::Height(int twips) {
  QWidget* widget = Widget(*this);
  const int client = twips - (widget->isWindow() ? FrameHeight : 0);
  widget->resize(widget->width(), std::max(0, ToPixels(client)));
}

void Control::Move(const Place& to) {
  Widget(*this)->setGeometry(ToPixels(to.Left), ToPixels(to.Top), ToPixels(to.Width),
                             ToPixels(to.Height));
}

bool Control::Visible() const { return !Widget(*this)->isHidden(); }
void Control::Visible(bool visible) {
  // One that is back before the next event has never left for the user: it keeps the keyboard.
  static QPointer<QWidget> leftWithFocus;
  QWidget* widget = Widget(*this);
  if (!visible && widget->window()->focusWidget() == widget) {
    leftWithFocus = widget;
    QTimer::singleShot(0, widget, [] { leftWithFocus = nullptr; });
  }
  widget->setVisible(visible);
  if (visible && leftWithFocus == widget) widget->setFocus();
}

bool Control::Enabled() const { return Widget(*this)->isEnabled(); }
void Control::Enabled(bool enabled) { Widget(*this)->setEnabled(enabled); }

std::uint32_t Control::BackColor() const {
  const QWidget* widget = Widget(*this);
  return widget->palette().color(widget->backgroundRole()).rgb() & 0xFFFFFF;
}

void Control::BackColor(std::uint32_t colour) { SetBackColour(*Widget(*this), colour); }

void Control::ForeColor(std::uint32_t colour) { SetTextColour(*Widget(*this), colour); }

void Control::FontUnderline(bool underline) {
  QFont font = Widget(*this)->font();
  font.setUnderline(underline);
  Widget(*this)->setFont(font);
}

void Control::ToolTipText(std::string_view text) {
  const QString shown = DisplayText(text);
  Widget(*this)->setToolTip(ToolTipPage(shown));
  Widget(*this)->setAccessibleDescription(shown);
}

void Control::SetFocus() { Widget(*this)->setFocus(); }

bool Control::HasFocus() const {
  const QWidget* widget = Widget(*this);
  const QWidget* keyboard = widget->focusProxy() ? widget->focusProxy() : widget;
  return widget->window()->focusWidget() == keyboard;
}

}  // namespace platform
