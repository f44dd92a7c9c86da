#include <algorithm>

#include <QGroupBox>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

PictureBox::PictureBox(Container& parent, const Design& design)
    : Container(parent, design, ::platform::Native(new QWidget(Widget(parent)))) {}

Frame::Frame(Container& parent, const Design& design)
    : Container(parent, design,
                ::platform::Native(new QGroupBox(FromText(design.Caption), Widget(parent)))) {}

Line::Line(Container& parent, const Design& design, std::uint32_t colour)
    : Control(parent, design, ::platform::Native(new QWidget(Widget(parent)))) {
  Widget(*this)->resize(ToPixels(design.At.Width), std::max(1, ToPixels(design.At.Height)));
  BackColor(colour);
}

}  // namespace platform
