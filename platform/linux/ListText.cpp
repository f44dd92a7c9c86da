#include "platform/linux/ListText.h"

#include "platform/Texts.h"
#include "platform/linux/Widgets.h"

namespace platform {

QString DisplayText(std::string_view bytes) { return FromText(OneLine(bytes)); }

QString DisplayLines(std::string_view bytes) { return FromText(ManyLines(bytes)); }

}  // namespace platform
