#include <QIcon>
#include <QLabel>

#include "platform/Forms.h"
#include "platform/linux/Handles.h"
#include "platform/linux/Widgets.h"

namespace platform {

Image::Image(Container& parent, const Design& design, const std::string& resource)
    : Control(parent, design, ::platform::Native(new QLabel(Widget(parent)))),
      picture_(AddPicture(QIcon(":/assets/" + FromText(resource)))) {
  const QIcon icon = PictureByHandle(picture_);
  auto* label = static_cast<QLabel*>(Widget(*this));
  label->setPixmap(icon.pixmap(label->size(), label->devicePixelRatioF()));
}

}  // namespace platform
