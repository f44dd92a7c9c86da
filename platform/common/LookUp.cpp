// The contract's look-ups. Built into the library of each machine's services, which find the names.

#include "platform/common/LookUp.h"

#include <utility>

#include "platform/Files.h"

namespace platform {
namespace {

/// The names of the look-up begun last. All are read before the first is handed out, so that none
/// can be lost to a deletion.
struct LookUp {
  std::vector<std::string> Names;
  std::size_t Next = 0;
};

LookUp& CurrentLookUp() {
  static LookUp lookUp;
  return lookUp;
}

}  // namespace

std::string Dir(const std::string& pattern, int attributes) {
  CurrentLookUp() = {NamesThatFit(pattern, attributes), 0};
  return Dir();
}

std::string Dir() {
  LookUp& lookUp = CurrentLookUp();
  return lookUp.Next < lookUp.Names.size() ? std::move(lookUp.Names[lookUp.Next++]) : std::string();
}

}  // namespace platform
