#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryFolder.h"

/// Called with one input. What a sanitizer finds and what `Require` finds ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline void Require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "Does not hold: %s\n", property);
  std::abort();
}

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Cuts off what stands in front of the next divider, or all.
inline std::string TakeField(std::string_view& rest, char divider) {
  const std::string field(rest.substr(0, rest.find(divider)));
  rest.remove_prefix(std::min(field.size() + 1, rest.size()));
  return field;
}

inline std::vector<std::string> Split(std::string_view text, char divider) {
  std::vector<std::string> fields;
  while (!text.empty()) fields.push_back(TakeField(text, divider));
  return fields;
}
