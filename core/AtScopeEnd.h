#pragma once

#include <utility>

/// Does something at the end of a scope, however the scope is left.
template <typename Action>
class AtScopeEnd {
 public:
  explicit AtScopeEnd(Action action) : action_(std::move(action)) {}
  AtScopeEnd(const AtScopeEnd&) = delete;
  AtScopeEnd& operator=(const AtScopeEnd&) = delete;
  ~AtScopeEnd() { action_(); }

 private:
  Action action_;
};
