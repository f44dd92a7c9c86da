#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/Registry.h"

// Routines around the registry. None reports a failure but `FetchRegValue`.

/// A value read from the registry: nothing, a text (REG_SZ) or a number (REG_DWORD).
using RegValue = std::variant<std::monostate, std::string, std::uint32_t>;

/// Makes the key when it is missing.
void CreateRegKey(platform::HKEY hive, const std::string& path);

/// Stores a value in a key that exists.
void WriteRegValue(platform::HKEY hive, const std::string& path, const std::string& name,
                   std::uint32_t type, const RegValue& data);

/// Stores a value in an open key: a text without its terminating NUL, or four bytes of a number.
/// Of any other type nothing is written. Returns the platform's result.
int StoreRegValue(platform::HKEY key, const std::string& name, std::uint32_t type,
                  const RegValue& data);

void DeleteRegValue(platform::HKEY hive, const std::string& path, const std::string& name);

RegValue ReadRegValue(platform::HKEY hive, const std::string& path, const std::string& name);

/// Reads a value of an open key. The platform's result code; -1 for a value of any other type.
int FetchRegValue(platform::HKEY key, const std::string& name, RegValue& value);
