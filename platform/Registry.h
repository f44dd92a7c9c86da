#pragma once

#include <cstdint>
#include <string>

// The per-user registry. Every function returns 0 on success and an error code otherwise.

namespace platform {

using HKEY = std::uint32_t;
inline constexpr HKEY HKEY_CURRENT_USER = 0x80000001;

inline constexpr std::uint32_t REG_SZ = 1;
inline constexpr std::uint32_t REG_DWORD = 4;

inline constexpr int ERROR_SUCCESS = 0;
inline constexpr int ERROR_FILE_NOT_FOUND = 2;
inline constexpr int ERROR_MORE_DATA = 234;

/// Opens a key, making it and its parents when missing. Key paths are divided by "\" and compare in
/// any case of their letters.
int RegCreateKeyExA(HKEY hive, const std::string& path, std::uint32_t access, HKEY& key);

/// Opens a key that exists.
int RegOpenKeyExA(HKEY hive, const std::string& path, std::uint32_t access, HKEY& key);

/// Stores a value: for REG_SZ the text's `size` bytes, for REG_DWORD four bytes.
int RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type, const void* data,
                   std::uint32_t size);

/// Reads a value. With no buffer only `type` and `size` (in bytes) are filled; with one, `size` is
/// its room on the way in and what was filled on the way out.
int RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t& type, void* data,
                     std::uint32_t& size);

/// Deletes a value; the key stays.
int RegDeleteValueA(HKEY key, const std::string& name);

/// Closes an opened key.
int RegCloseKey(HKEY key);

}  // namespace platform
