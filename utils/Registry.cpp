#include "utils/Registry.h"

#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include "utils/DecimalText.h"
#include "utils/RegistryTypes.h"

namespace vemora::utils {
namespace {

constexpr REGSAM kReadWrite = KEY_READ | KEY_WRITE;

struct KeyCloser {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using UniqueKey = std::unique_ptr<HKEY__, KeyCloser>;

/// The longest text that the system's counted strings hold.
constexpr std::size_t kMaxNameLength = 32766;

/// The system would read a name up to its first zero or up to the longest length it can count, and
/// so might act on another key.
bool AreUsable(std::initializer_list<const vemora_ustring*> names) {
  return std::all_of(names.begin(), names.end(), [](const vemora_ustring* name) {
    return name->size() <= kMaxNameLength && name->find(L'\0') == vemora_ustring::npos;
  });
}

/// `RegOpenKeyW` would do, but for an empty subkey it returns the caller's key, which would then be
/// closed here.
UniqueKey OpenKey(HKEY root, const vemora_ustring& subkey, REGSAM access = MAXIMUM_ALLOWED) {
  HKEY key = nullptr;
  const LSTATUS status = RegOpenKeyExW(root, subkey.c_str(), 0, access, &key);
  return UniqueKey(status == ERROR_SUCCESS ? key : nullptr);
}

UniqueKey CreateKey(HKEY root, const vemora_ustring& subkey, REGSAM access) {
  HKEY key = nullptr;
  const LSTATUS status = RegCreateKeyExW(root, subkey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         access, nullptr, &key, nullptr);
  return UniqueKey(status == ERROR_SUCCESS ? key : nullptr);
}

/// Opens `path\category`, if there is such a key and both names are plain: an empty name, or a
/// separator that is not between two names, means something else in one name than in two.
UniqueKey OpenJoined(HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  const vemora_ustring subkey = path + L'\\' + category;
  const bool plain = subkey.front() != L'\\' && subkey.back() != L'\\' &&
                     subkey.find(L"\\\\") == vemora_ustring::npos;
  return plain && AreUsable({&subkey}) ? OpenKey(root, subkey, KEY_READ) : nullptr;
}

/// Leaves an empty category behind where there was none: this is meant. Most categories exist, and
/// one call opens them in half the time of two.
UniqueKey OpenForReading(HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  if (UniqueKey key = OpenJoined(root, path, category)) {
    return key;
  }
  if (!AreUsable({&path, &category})) {
    return nullptr;
  }
  const UniqueKey path_key = OpenKey(root, path);
  return path_key != nullptr ? CreateKey(path_key.get(), category, KEY_READ) : nullptr;
}

UniqueKey OpenForWriting(HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  if (!AreUsable({&path, &category})) {
    return nullptr;
  }
  const UniqueKey path_key = CreateKey(root, path, kReadWrite);
  return path_key != nullptr ? CreateKey(path_key.get(), category, kReadWrite) : nullptr;
}

UniqueKey OpenExisting(HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  const bool both = !path.empty() && !category.empty();
  const vemora_ustring subkey = both ? path + L'\\' + category : path + category;
  return AreUsable({&subkey}) ? OpenKey(root, subkey) : nullptr;
}

bool HasValue(HKEY key, const vemora_ustring& name) {
  return AreUsable({&name}) &&
         RegQueryValueExW(key, name.c_str(), nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

/// Reads a value of at most four bytes; false when it is longer or absent.
bool QueryDword(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                const vemora_ustring& name, DWORD& value) {
  const UniqueKey key = OpenForReading(root, path, category);
  DWORD data = 0;
  DWORD size = sizeof(data);
  if (key == nullptr || !AreUsable({&name}) ||
      RegQueryValueExW(key.get(), name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&data),
                       &size) != ERROR_SUCCESS) {
    return false;
  }
  value = data;
  return true;
}

/// Reads all bytes of a value. Another program may make it longer meanwhile, so the buffer grows
/// until the value fits.
bool QueryBytes(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                const vemora_ustring& name, std::string& bytes) {
  const UniqueKey key = OpenForReading(root, path, category);
  if (key == nullptr || !AreUsable({&name})) {
    return false;
  }
  std::string buffer;
  LSTATUS status = ERROR_MORE_DATA;
  DWORD size = 0;
  if (RegQueryValueExW(key.get(), name.c_str(), nullptr, nullptr, nullptr, &size) !=
      ERROR_SUCCESS) {
    return false;
  }
  while (status == ERROR_MORE_DATA) {
    // At least one byte, for without a buffer the system would tell the size only.
    buffer.resize(std::max(size, DWORD{1}));
    size = static_cast<DWORD>(buffer.size());
    status = RegQueryValueExW(key.get(), name.c_str(), nullptr, nullptr,
                              reinterpret_cast<BYTE*>(buffer.data()), &size);
  }
  if (status != ERROR_SUCCESS) {
    return false;
  }
  buffer.resize(size);
  bytes = std::move(buffer);
  return true;
}

bool SetValue(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
              const vemora_ustring& name, DWORD type, const void* data, std::size_t size) {
  if (!AreUsable({&name}) || size > std::numeric_limits<DWORD>::max()) {
    return false;
  }
  const UniqueKey key = OpenForWriting(root, path, category);
  return key != nullptr &&
         RegSetValueExW(key.get(), name.c_str(), 0, type, static_cast<const BYTE*>(data),
                        static_cast<DWORD>(size)) == ERROR_SUCCESS;
}

bool SetDword(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
              const vemora_ustring& name, DWORD value) {
  return SetValue(root, path, category, name, REG_DWORD, &value, sizeof(value));
}

/// Scans the number at the start of a text as the C locale does; false when there is none that a
/// double can hold.
bool ScanDouble(vemora_ustring text, double& value) {
  text.TrimLeft();
  std::string narrow;
  for (const wchar_t unit : text) {
    if (unit > 0x7F) {
      break;
    }
    narrow.push_back(static_cast<char>(unit));
  }
  const char* first = narrow.data();
  const char* const last = first + narrow.size();
  if (first != last && *first == '+' && narrow.compare(1, 1, "-") != 0) {
    ++first;
  }
  double number = 0.0;
  const auto [end, error] = std::from_chars(first, last, number);
  // "1.#INF00" and its like are how some C runtimes write what is no number; a word that only
  // begins with "inf" or "nan" is none either.
  if (error != std::errc() ||
      (end != last && ((*end == '#' && end[-1] == '.') || !std::isfinite(number)))) {
    return false;
  }
  value = number;
  return true;
}

}  // namespace

const HKEY Registry::kCurrentUser = HKEY_CURRENT_USER;
const HKEY Registry::kLocalMachine = HKEY_LOCAL_MACHINE;

bool Registry::PathExists(HKEY root, const vemora_ustring& path) {
  return AreUsable({&path}) && OpenKey(root, path) != nullptr;
}

bool Registry::KeyExists(HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  return OpenExisting(root, path, category) != nullptr;
}

bool Registry::ValueExists(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                           const vemora_ustring& name) {
  const UniqueKey key = OpenExisting(root, path, category);
  return key != nullptr && HasValue(key.get(), name);
}

bool Registry::DeleteKey(HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  const bool names_subkey = category.find_first_not_of(L'\\') != vemora_ustring::npos;
  if (!names_subkey || !KeyExists(root, path, category)) {
    return false;
  }
  const UniqueKey path_key = OpenKey(root, path);
  if (path_key == nullptr) {
    return false;
  }
  // The result is not looked at: a category with subkeys stays, and that is meant.
  RegDeleteKeyW(path_key.get(), category.c_str());
  return true;
}

bool Registry::DeleteValue(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                           const vemora_ustring& name) {
  if (!ValueExists(root, path, category, name)) {
    return false;
  }
  const UniqueKey key = OpenExisting(root, path, category);
  if (key == nullptr) {
    return false;
  }
  RegDeleteValueW(key.get(), name.c_str());
  return true;
}

int Registry::LoadInt(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                      const vemora_ustring& name, int defaultValue) {
  DWORD value = 0;
  return QueryDword(root, path, category, name, value) ? static_cast<int>(value) : defaultValue;
}

bool Registry::LoadBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name, bool defaultValue) {
  DWORD value = 0;
  return QueryDword(root, path, category, name, value) ? value != 0 : defaultValue;
}

double Registry::LoadDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                            const vemora_ustring& name, double defaultValue) {
  double value = defaultValue;
  ScanDouble(LoadStringW(root, path, category, name, L""), value);
  return value;
}

vemora_ustring Registry::LoadStringW(HKEY root, const vemora_ustring& path,
                                     const vemora_ustring& category, const vemora_ustring& name,
                                     const vemora_ustring& defaultValue) {
  std::string bytes;
  return QueryBytes(root, path, category, name, bytes) ? ToRegistryText(bytes) : defaultValue;
}

std::string Registry::LoadBinary(HKEY root, const vemora_ustring& path,
                                 const vemora_ustring& category, const vemora_ustring& name,
                                 const std::string& defaultValue) {
  std::string bytes = defaultValue;
  QueryBytes(root, path, category, name, bytes);
  return bytes;
}

bool Registry::SaveInt(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                       const vemora_ustring& name, int value) {
  return SetDword(root, path, category, name, static_cast<DWORD>(value));
}

bool Registry::SaveBool(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                        const vemora_ustring& name, bool value) {
  return SetDword(root, path, category, name, value ? 1 : 0);
}

bool Registry::SaveDouble(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, double value) {
  const std::string text = FormatFixed(value);
  return SaveString(root, path, category, name, vemora_ustring(text.begin(), text.end()));
}

bool Registry::SaveString(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, const vemora_ustring& value) {
  return SetValue(root, path, category, name, REG_SZ, value.c_str(),
                  (value.size() + 1) * sizeof(wchar_t));
}

bool Registry::SaveBinary(HKEY root, const vemora_ustring& path, const vemora_ustring& category,
                          const vemora_ustring& name, const std::string& value) {
  return SetValue(root, path, category, name, REG_BINARY, value.data(), value.size());
}

std::optional<std::vector<vemora_ustring>> Registry::EnumerateKeys(HKEY root,
                                                                   const vemora_ustring& path,
                                                                   const vemora_ustring& category) {
  const UniqueKey key = OpenExisting(root, path, category);
  std::vector<vemora_ustring> names;
  LSTATUS status = key != nullptr ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  vemora_ustring buffer(kMaxNameLength + 2, L'\0');
  while (status == ERROR_SUCCESS) {
    auto length = static_cast<DWORD>(buffer.size());
    status = RegEnumKeyExW(key.get(), static_cast<DWORD>(names.size()), buffer.data(), &length,
                           nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_SUCCESS) {
      names.emplace_back(buffer.substr(0, length));
    }
  }
  return status == ERROR_NO_MORE_ITEMS ? std::optional(std::move(names)) : std::nullopt;
}

std::optional<std::vector<RegistryValue>> Registry::EnumerateValues(
    HKEY root, const vemora_ustring& path, const vemora_ustring& category) {
  const UniqueKey key = OpenExisting(root, path, category);
  std::vector<RegistryValue> values;
  LSTATUS status = key != nullptr ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  vemora_ustring name(kMaxNameLength + 2, L'\0');
  std::string bytes(256, '\0');
  while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
    auto length = static_cast<DWORD>(name.size());
    auto size = static_cast<DWORD>(bytes.size());
    DWORD type = 0;
    status = RegEnumValueW(key.get(), static_cast<DWORD>(values.size()), name.data(), &length,
                           nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size);
    if (status == ERROR_SUCCESS) {
      values.push_back({name.substr(0, length), type, bytes.substr(0, size)});
    } else if (status == ERROR_MORE_DATA) {
      // The size that the system tells may be too small by the next call.
      bytes.resize(std::max<std::size_t>(size, bytes.size() * 2));
    }
  }
  return status == ERROR_NO_MORE_ITEMS ? std::optional(std::move(values)) : std::nullopt;
}

void Registry::Synchronize(HKEY key) { RegFlushKey(key); }

}  // namespace vemora::utils
