#include "platform/windows/System.h"

#include "platform/Registry.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "platform/common/HandleTable.h"
#include "platform/windows/Text.h"

namespace platform {
namespace {

class OpenKey {
 public:
  explicit OpenKey(::HKEY key) : key_(key) {}
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() { ::RegCloseKey(key_); }
  ::HKEY Get() const { return key_; }

 private:
  ::HKEY key_;
};

HandleTable<OpenKey>& Keys() {
  static HandleTable<OpenKey> table;
  return table;
}

/// Null, which the system refuses, for a key that is not open.
::HKEY Find(HKEY key) {
  if (key == HKEY_CURRENT_USER) return SystemCurrentUser;
  const OpenKey* const open = Keys().Find(static_cast<std::int32_t>(key));
  return open == nullptr ? nullptr : open->Get();
}

int Opened(LSTATUS result, ::HKEY opened, HKEY& key) {
  if (result == ERROR_SUCCESS) {
    key = static_cast<HKEY>(Keys().Add(std::make_unique<OpenKey>(opened)));
  }
  return static_cast<int>(result);
}

struct Value {
  DWORD Type = REG_NONE;
  std::vector<wchar_t> Units;
  DWORD Size = 0;  ///< In bytes.
};

/// Reads a value of any length, which may change meanwhile.
LSTATUS Read(::HKEY key, const std::string& name, Value& value) {
  LSTATUS result = ERROR_MORE_DATA;
  for (value.Size = 512; result == ERROR_MORE_DATA;) {
    value.Units.resize(value.Size / sizeof(wchar_t) + 1);
    value.Size = static_cast<DWORD>(value.Units.size() * sizeof(wchar_t));
    result = RegQueryValueExW(key, Wide(name).c_str(), nullptr, &value.Type,
                              reinterpret_cast<BYTE*>(value.Units.data()), &value.Size);
  }
  return result;
}

/// The value's bytes as the contract has them: a text without the NUL that ends it in the registry.
std::string Bytes(const Value& value) {
  const auto* const bytes = reinterpret_cast<const char*>(value.Units.data());
  if (value.Type != REG_SZ) return {bytes, value.Size};
  std::wstring_view text(value.Units.data(), value.Size / sizeof(wchar_t));
  if (text.ends_with(L'\0')) text.remove_suffix(1);
  return Narrow(text);
}

}  // namespace

int RegCreateKeyExA(HKEY hive, const std::string& path, std::uint32_t access, HKEY& key) {
  ::HKEY opened = nullptr;
  const LSTATUS result = RegCreateKeyExW(Find(hive), Wide(path).c_str(), 0, nullptr, 0, access,
                                         nullptr, &opened, nullptr);
  return Opened(result, opened, key);
}

int RegOpenKeyExA(HKEY hive, const std::string& path, std::uint32_t access, HKEY& key) {
  ::HKEY opened = nullptr;
  const LSTATUS result = RegOpenKeyExW(Find(hive), Wide(path).c_str(), 0, access, &opened);
  return Opened(result, opened, key);
}

int RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type, const void* data,
                   std::uint32_t size) {
  if (type != REG_SZ) {
    return RegSetValueExW(Find(key), Wide(name).c_str(), 0, type, static_cast<const BYTE*>(data),
                          size);
  }
  // Others that read a text may count on the NUL behind it.
  const std::wstring text = Wide({static_cast<const char*>(data), size});
  return RegSetValueExW(Find(key), Wide(name).c_str(), 0, type,
                        reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

int RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t& type, void* data,
                     std::uint32_t& size) {
  Value value;
  const LSTATUS result = Read(Find(key), name, value);
  if (result != ERROR_SUCCESS) return result;
  const std::string bytes = Bytes(value);
  const std::uint32_t room = size;
  type = value.Type;
  size = static_cast<std::uint32_t>(bytes.size());
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < size) return ERROR_MORE_DATA;
  std::copy(bytes.begin(), bytes.end(), static_cast<char*>(data));
  return ERROR_SUCCESS;
}

int RegDeleteValueA(HKEY key, const std::string& name) {
  return RegDeleteValueW(Find(key), Wide(name).c_str());
}

int RegCloseKey(HKEY key) {
  return Keys().Remove(static_cast<std::int32_t>(key)) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

}  // namespace platform
