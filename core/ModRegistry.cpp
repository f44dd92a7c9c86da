#include "core/ModRegistry.h"

namespace {

// Query value, set value, create subkey, enumerate subkeys, notify, create link.
constexpr std::uint32_t Access = 63;

/// A key opened for the length of one call.
class OpenKey {
 public:
  OpenKey(platform::HKEY hive, const std::string& path) {
    platform::RegOpenKeyExA(hive, path, Access, key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() { platform::RegCloseKey(key_); }
  operator platform::HKEY() const { return key_; }

 private:
  platform::HKEY key_ = 0;
};

}  // namespace

void CreateRegKey(platform::HKEY hive, const std::string& path) {
  platform::HKEY key = 0;
  platform::RegCreateKeyExA(hive, path, Access, key);
  platform::RegCloseKey(key);
}

void WriteRegValue(platform::HKEY hive, const std::string& path, const std::string& name,
                   std::uint32_t type, const RegValue& data) {
  StoreRegValue(OpenKey(hive, path), name, type, data);
}

int StoreRegValue(platform::HKEY key, const std::string& name, std::uint32_t type,
                  const RegValue& data) {
  if (const auto* text = std::get_if<std::string>(&data); text && type == platform::REG_SZ) {
    return platform::RegSetValueExA(key, name, type, text->data(),
                                    static_cast<std::uint32_t>(text->size()));
  }
  if (const auto* number = std::get_if<std::uint32_t>(&data);
      number && type == platform::REG_DWORD) {
    return platform::RegSetValueExA(key, name, type, number, sizeof *number);
  }
  return -1;
}

void DeleteRegValue(platform::HKEY hive, const std::string& path, const std::string& name) {
  platform::RegDeleteValueA(OpenKey(hive, path), name);
}

RegValue ReadRegValue(platform::HKEY hive, const std::string& path, const std::string& name) {
  RegValue value;
  FetchRegValue(OpenKey(hive, path), name, value);
  return value;
}

int FetchRegValue(platform::HKEY key, const std::string& name, RegValue& value) {
  value = {};
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  const int result = platform::RegQueryValueExA(key, name, type, nullptr, size);
  if (result != platform::ERROR_SUCCESS) return result;
  if (type == platform::REG_SZ) {
    std::string text(size, '\0');
    const int read = platform::RegQueryValueExA(key, name, type, text.data(), size);
    if (read == platform::ERROR_SUCCESS) value = text.substr(0, size);
    return read;
  }
  if (type == platform::REG_DWORD) {
    std::uint32_t number = 0;
    size = sizeof number;
    const int read = platform::RegQueryValueExA(key, name, type, &number, size);
    if (read == platform::ERROR_SUCCESS) value = number;
    return read;
  }
  return -1;
}
