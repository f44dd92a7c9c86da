#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>

namespace platform {

/// Numbers from 1 up for things that are open. A number comes back only after two thousand million
/// others, so that one kept too long names nothing.
template <typename Thing>
class HandleTable {
 public:
  std::int32_t Add(std::unique_ptr<Thing> thing) {
    do {
      last_ = last_ == INT32_MAX ? 1 : last_ + 1;
    } while (things_.contains(last_));
    things_.emplace(last_, std::move(thing));
    return last_;
  }
  Thing* Find(std::int32_t handle) const {
    const auto found = things_.find(handle);
    return found == things_.end() ? nullptr : found->second.get();
  }
  bool Remove(std::int32_t handle) { return things_.erase(handle) > 0; }

 private:
  std::unordered_map<std::int32_t, std::unique_ptr<Thing>> things_;
  std::int32_t last_ = 0;
};

}  // namespace platform
