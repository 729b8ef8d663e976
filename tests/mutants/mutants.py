"""The defects that run_mutants.py seeds, and the tests that are to notice them.

A mutant counts as caught only if the tests of its own unit notice it; that tests elsewhere would
stumble over it does not count.

There are no mutants that loosen which folders RemoveFolder and DeleteToRecycleBin refuse or where
they stop: below Wine, drives lead to the real disk.
"""

import dataclasses


@dataclasses.dataclass(frozen=True, order=True)
class Program:
    preset: str
    test: str


@dataclasses.dataclass
class Mutant:
    name: str
    file: str
    old: str  # is in the file exactly once
    new: str
    equivalent: str = ""  # why nobody can notice; such a mutant does not count


def native(*tests):
    return [Program("native", test) for test in tests]


def windows(*tests):
    return [Program("mingw-release", test) for test in tests]


JSON = native("JsonCommon_test", "JsonFiles_test", "PreferencesMemory_test",
              "PreferencesDefaults_test")

# The test programs of each file, the cheapest first.
UNITS = {
    "prefs/JsonCommon.cpp": JSON,
    "prefs/JsonText.cpp": JSON,
    "prefs/Preferences.cpp": native("Preferences_test", "PreferencesRegistry_test"),
    "prefs/PreferencesBase.cpp": native("PreferencesBase_test"),
    "prefs/PreferencesDefaults.cpp": native("PreferencesDefaults_test"),
    # The native registry knows no roots.
    "prefs/PreferencesRegistry.cpp": native("PreferencesRegistry_test",
                                            "IPreferencesContract_test") +
                                     windows("PreferencesRegistry_test"),
    "prefs/ShareLevel.cpp": native("JsonFiles_test"),
    "prefs/ShareLevelTable.cpp": native("ShareLevelTable_test"),
    "utils/Dictionary.cpp": native("Dictionary_test"),
    "utils/Files.cpp": windows("Files_test"),
    "utils/Locations.cpp": windows("Locations_test"),
    "utils/PathText.cpp": native("PathText_test"),
    "utils/Registry.cpp": windows("Registry_test"),
    "utils/Singleton.h": native("Singleton_test"),
    "utils/Variant.cpp": native("Variant_test"),
    "utils/WideFormat.cpp": windows("vemora_ustring_test", "vemora_ustring_windows_test"),
    "utils/vemora_ustring.cpp": native("vemora_ustring_test"),
}

MUTANTS = [
    # Variant
    Mutant("variant: a copy does not count its text", "utils/Variant.cpp",
           "      ++payload_.cell->references;\n", ""),
    Mutant("variant: a text is never deleted", "utils/Variant.cpp",
           "        delete payload_.cell;\n", ""),
    Mutant("variant: a vector is never deleted", "utils/Variant.cpp",
           "      delete payload_.vector;\n", ""),
    Mutant("variant: a map is not copied", "utils/Variant.cpp",
           "      payload_.map = new Map(*other.payload_.map);\n", ""),
    Mutant("variant: moving keeps the other's type", "utils/Variant.cpp",
           "type_(std::exchange(other.type_, kEmpty))", "type_(other.type_)"),
    Mutant("variant: assignment releases first", "utils/Variant.cpp",
           "  Variant old(std::move(other));\n"
           "  std::swap(type_, old.type_);\n"
           "  std::swap(payload_, old.payload_);\n",
           "  Release();\n"
           "  type_ = std::exchange(other.type_, kEmpty);\n"
           "  payload_ = std::exchange(other.payload_, Payload{{0, 0}});\n"),
    Mutant("variant: the largest int does not fit", "utils/Variant.cpp",
           "value < kInt32End;", "value < kInt32End - 1.0;"),
    Mutant("variant: one past the largest int fits", "utils/Variant.cpp",
           "value < kInt32End;", "value <= kInt32End;",
           equivalent="the processor's own conversion gives the same"),
    Mutant("variant: negative doubles are no unsigned", "utils/Variant.cpp",
           "value >= -kInt64End", "value >= 0.0"),
    Mutant("variant: negative doubles are false", "utils/Variant.cpp",
           "GetDouble() != 0.0", "GetDouble() > 0.0"),
    Mutant("variant: a short reads as its low byte", "utils/Variant.cpp",
           "return payload_.short_integer;", "return payload_.character;"),
    Mutant("variant: a float reads as unsigned by its int", "utils/Variant.cpp",
           "const bool floating = type_ == kFloat || type_ == kDouble;",
           "const bool floating = type_ == kDouble;"),
    Mutant("variant: index off by one", "utils/Variant.cpp",
           "index >= vector.size()", "index > vector.size()"),
    Mutant("variant: wrong exception for a missing key", "utils/Variant.cpp",
           'throw std::out_of_range("invalid map', 'throw std::invalid_argument("invalid map'),
    Mutant("variant: types compared with less", "utils/Variant.cpp",
           "if (type_ != other.type_) {", "if (type_ < other.type_) {"),
    Mutant("variant: only the high word compared", "utils/Variant.cpp",
           "payload_.raw.low == other.payload_.raw.low &&", ""),
    Mutant("variant: text taken of other types", "utils/Variant.cpp",
           "if (type_ != kString) {", "if (type_ == kEmpty) {"),
    Mutant("variant: wrong tag for unsigned short", "utils/Variant.cpp",
           "Variant::Variant(unsigned short value) noexcept : type_(kShort)",
           "Variant::Variant(unsigned short value) noexcept : type_(kInt)"),

    # Dictionary
    Mutant("dictionary: Set keeps the old value", "utils/Dictionary.cpp",
           "values[key] = value;", "values.emplace(key, value);"),
    Mutant("dictionary: assignment keeps old entries", "utils/Dictionary.cpp",
           "values = Values(other.values);",
           "values.insert(other.values.begin(), other.values.end());"),

    # Singleton
    Mutant("singleton: a new instance each time", "utils/Singleton.h",
           "if (static_instance_ == nullptr) {", "if (true) {"),
    Mutant("singleton: no exit hook", "utils/Singleton.h",
           "    static_cast<void>(std::atexit(&Singleton::Destroy));\n", ""),
    Mutant("singleton: the destructor forgets nothing", "utils/Singleton.h",
           "Singleton<T>::~Singleton() {\n  static_instance_ = nullptr;\n",
           "Singleton<T>::~Singleton() {\n"),
    Mutant("singleton: Destroy forgets nothing", "utils/Singleton.h",
           "  delete static_instance_;\n  static_instance_ = nullptr;\n",
           "  delete static_instance_;\n",
           equivalent="the destructor has forgotten the instance already"),

    # PathText
    Mutant("path: a backslash separates nothing", "utils/PathText.cpp",
           "return unit == '/' || unit == '\\\\';", "return unit == '/';"),
    Mutant("path: a blank is illegal", "utils/PathText.cpp", "unit < 0x20 ||", "unit <= 0x20 ||"),
    Mutant("path: characters cut to a byte", "utils/PathText.cpp", "unit < 0x7F && ", ""),
    Mutant("path: smb:// protects one more", "utils/PathText.cpp", "return 6;", "return 7;"),
    Mutant("path: a drive protects three", "utils/PathText.cpp",
           "path[2] == '/' ? 3 : 2", "path[2] == '/' ? 3 : 3"),
    Mutant("path: trailing separator of a drive cut", "utils/PathText.cpp",
           "(normal.size() == 1 || normal[normal.size() - 2] != ':')", "true"),
    Mutant("path: doubled letters merged", "utils/PathText.cpp",
           "return a == '/' && b == '/';", "return a == b;"),
    Mutant("path: both separators of a join stay", "utils/PathText.cpp",
           "joined.append(second, skip ? 1 : 0);", "joined.append(second, skip ? 0 : 0);"),
    Mutant("path: a leading dot is no extension", "utils/PathText.cpp",
           "dot >= folder_end", "dot > folder_end"),
    Mutant("path: the name's end counted from the start", "utils/PathText.cpp",
           "end - parts.folder_end", "end"),
    Mutant("path: a drive is no folder", "utils/PathText.cpp", "':' ? 2 : 0", "':' ? 0 : 0"),

    # PreferencesBase
    Mutant("base: write policy turned round", "prefs/PreferencesBase.cpp",
           "return !writeImmediately || SaveInt(", "return writeImmediately || SaveInt("),
    Mutant("base: assignment keeps the write policy", "prefs/PreferencesBase.cpp",
           "  writeImmediately = other.writeImmediately;\n", ""),
    Mutant("base: a bool read back as what is an int", "prefs/PreferencesBase.cpp",
           "value.GetType() == Variant::kBool", "value.GetType() == Variant::kInt"),
    Mutant("base: category and key swapped", "prefs/PreferencesBase.cpp",
           "return SaveBinary(category, key, value);", "return SaveBinary(key, category, value);"),
    Mutant("base: the first value stays", "prefs/PreferencesBase.cpp",
           "cache[category].insert_or_assign(key, value);", "cache[category].emplace(key, value);"),
    Mutant("base: a bool flushed as an int", "prefs/PreferencesBase.cpp",
           "SaveBool(category, key, value.GetBool());", "SaveInt(category, key, value.GetInt());"),
    Mutant("base: one value flushed of each category", "prefs/PreferencesBase.cpp",
           "      SaveValue(category, key, value);\n",
           "      SaveValue(category, key, value);\n      break;\n"),
    Mutant("base: the default of a text doubled", "prefs/PreferencesBase.cpp",
           ": LoadString(category, key, defaultValue);",
           ": LoadString(category, key, defaultValue + defaultValue);"),

    # PreferencesRegistry
    Mutant("registry store: flush turned round", "prefs/PreferencesRegistry.cpp",
           "if (!static_write_immediately_) {", "if (static_write_immediately_) {"),
    Mutant("registry store: Synchronize saves nothing", "prefs/PreferencesRegistry.cpp",
           "  SavePreferences();\n  Registry::Synchronize(Registry::kCurrentUser);\n",
           "  Registry::Synchronize(Registry::kCurrentUser);\n"),
    Mutant("registry store: wrong version", "prefs/PreferencesRegistry.cpp",
           "kCurrentVersion = 18", "kCurrentVersion = 17"),
    Mutant("registry store: wrong root", "prefs/PreferencesRegistry.cpp",
           "return Registry::PathExists(Registry::kCurrentUser,",
           "return Registry::PathExists(Registry::kLocalMachine,"),
    Mutant("registry store: category and key swapped", "prefs/PreferencesRegistry.cpp",
           "Registry::DeleteValue(Registry::kCurrentUser, path, category, key);",
           "Registry::DeleteValue(Registry::kCurrentUser, path, key, category);"),
    Mutant("registry store: deferred at first", "prefs/PreferencesRegistry.cpp",
           "static_write_immediately_ = true;", "static_write_immediately_ = false;"),
    Mutant("registry store: wrong level", "prefs/PreferencesRegistry.cpp",
           "return kThisComputerOnly;", "return kNoShareLevel;"),
    Mutant("registry store: the default of an int lost", "prefs/PreferencesRegistry.cpp",
           "return Registry::LoadInt(Registry::kCurrentUser, path, category, key, defaultValue);",
           "return Registry::LoadInt(Registry::kCurrentUser, path, category, key, defaultValue * 0);"),

    # Preferences
    Mutant("front door: SetPath chooses nothing", "prefs/Preferences.cpp",
           "  use_json = false;\n", ""),
    Mutant("front door: one new path is none", "prefs/Preferences.cpp",
           "store.GetPrivatePath() ||", "store.GetPrivatePath() &&"),
    Mutant("front door: paths swapped", "prefs/Preferences.cpp",
           "store.SetPaths(privatePath, sharedPath);", "store.SetPaths(sharedPath, privatePath);"),
    Mutant("front door: new paths load nothing", "prefs/Preferences.cpp",
           "    store.LoadPreferences();\n", ""),
    Mutant("front door: only the last level told", "prefs/Preferences.cpp",
           "bits |= 1U << level;", "bits = 1U << level;"),
    Mutant("front door: the last level left out", "prefs/Preferences.cpp",
           "level < kShareLevelCount;", "level + 1 < kShareLevelCount;"),
    Mutant("front door: Destroy looks at no back end", "prefs/Preferences.cpp",
           "  if (use_json) {\n    // Made", "  {\n    // Made"),
    Mutant("front door: policy of the wrong back end", "prefs/Preferences.cpp",
           "if (!use_json) {\n    PreferencesRegistry::SetWriteImmediately(on);",
           "if (use_json) {\n    PreferencesRegistry::SetWriteImmediately(on);"),

    # PreferencesDefaults
    Mutant("defaults: a guard restores the first level", "prefs/PreferencesDefaults.cpp",
           "default_share_level = saved_level_;", "default_share_level = kNoShareLevel;"),
    Mutant("defaults: a guard saves its own flag", "prefs/PreferencesDefaults.cpp",
           "saved_overwrite_(default_overwrite_flag)", "saved_overwrite_(overwrite)"),
    Mutant("defaults: nothing overwritten at first", "prefs/PreferencesDefaults.cpp",
           "default_overwrite_flag = true;", "default_overwrite_flag = false;"),

    # ShareLevelTable, ShareLevel
    Mutant("levels: a row of another level", "prefs/ShareLevelTable.cpp",
           '{"AutoSave", "AutoSaveFile", kWindowsOnly}',
           '{"AutoSave", "AutoSaveFile", kSharedForAllComputers}'),
    Mutant("levels: a lost row", "prefs/ShareLevelTable.cpp",
           '    {"Application", "CID", kThisComputerOnly},\n', ""),
    Mutant("levels: category and key swapped", "prefs/ShareLevelTable.cpp",
           "table.push_back({row.category, row.key,", "table.push_back({row.key, row.category,"),
    Mutant("levels: names swapped", "prefs/ShareLevel.cpp",
           '"Windows Only",       "Mac Only"', '"Mac Only",       "Windows Only"'),

    # JsonCommon, JsonText, vemora_ustring
    Mutant("json store: a deletion leaves it clean", "prefs/JsonCommon.cpp",
           "    level.erase(found);\n  }\n  dirty = true;\n", "    level.erase(found);\n  }\n"),
    Mutant("json store: the default level unchecked", "prefs/JsonCommon.cpp",
           "return IsLevel(level) ? level : kThisComputerOnly;", "return level;"),
    Mutant("json store: no check of the level", "prefs/JsonCommon.cpp",
           "return !IsLevel(level) || levels[level].empty();", "return levels[level].empty();"),
    Mutant("json store: overwrite flag turned round", "prefs/JsonCommon.cpp",
           "if (!GetDefaultOverwriteFlag()) {", "if (GetDefaultOverwriteFlag()) {"),
    Mutant("json store: rows for Windows left out", "prefs/JsonCommon.cpp",
           "level <= kWindowsOnly", "level < kWindowsOnly"),
    Mutant("json store: saved although told not to", "prefs/JsonCommon.cpp",
           "if (savePrefs && dirty) {", "if (dirty) {"),
    Mutant("json store: a missing file leaves it clean", "prefs/JsonCommon.cpp",
           "dirty = !LoadFile(", "dirty = LoadFile("),
    Mutant("json store: a save leaves it dirty", "prefs/JsonCommon.cpp", "  dirty = false;\n", ""),
    Mutant("json store: lost entries not told", "prefs/JsonCommon.cpp",
           "all_stored = false;", "all_stored = true;"),
    Mutant("json text: infinities written", "prefs/JsonText.cpp",
           "if (std::isfinite(value.GetDouble())) {", "if (!std::isnan(value.GetDouble())) {"),
    Mutant("text: no check for null", "utils/vemora_ustring.cpp",
           "  if (text != nullptr) {\n    assign(text);\n  }\n", "  assign(text);\n"),

    # Files
    Mutant("files: handles stay open", "utils/Files.cpp",
           "CloseHandle(handle);", "static_cast<void>(handle);"),
    Mutant("files: searches stay open", "utils/Files.cpp",
           "FindClose(search);", "static_cast<void>(search);"),
    Mutant("files: COM stays initialised", "utils/Files.cpp",
           "      CoUninitialize();\n", ""),
    Mutant("files: a zero in a name ignored", "utils/Files.cpp",
           " && path.find(CodeUnit{0}) == vemora_ustring::npos;", ";"),
    Mutant("files: other files of a disk are the same", "utils/Files.cpp",
           "a.nFileIndexLow == b.nFileIndexLow;", "a.nFileIndexHigh == b.nFileIndexHigh;"),
    Mutant("files: size counts the zero", "utils/Files.cpp",
           "*size = count;", "*size = count + 1;"),
    Mutant("files: reading shuts out readers", "utils/Files.cpp",
           "FILE_GENERIC_READ, FILE_SHARE_READ, nullptr,", "FILE_GENERIC_READ, 0, nullptr,"),
    Mutant("files: read-only files not rewritten", "utils/Files.cpp",
           "  DeleteFileIfPresent(path);\n  const", "  const"),
    Mutant("files: nothing to delete is a failure", "utils/Files.cpp",
           "if (attributes == INVALID_FILE_ATTRIBUTES) {\n    return true;",
           "if (attributes == INVALID_FILE_ATTRIBUTES) {\n    return false;"),
    Mutant("files: a move replaces nothing", "utils/Files.cpp",
           "  DeleteFileIfPresent(to);\n", ""),
    Mutant("files: failIfExists turned round", "utils/Files.cpp",
           "failIfExists ? TRUE : FALSE", "failIfExists ? FALSE : TRUE"),
    Mutant("files: folder of a copy not made", "utils/Files.cpp",
           "  if (!IsDirectory(folder)) {\n", "  if (IsDirectory(folder)) {\n"),
    Mutant("files: time of the last read", "utils/Files.cpp",
           "status.st_mtime", "status.st_atime"),
    Mutant("files: temporary folder not normalised", "utils/Files.cpp",
           "NormalizePath(folder) : vemora_ustring();",
           "vemora_ustring(folder) : vemora_ustring();"),
    Mutant("files: longest folder off by one", "utils/Files.cpp", "MAX_PATH - 14", "MAX_PATH - 15"),
    Mutant("files: one drive only", "utils/Files.cpp",
           "root += drives.back().root.size() + 1;", "root += drives.back().root.size();"),
    Mutant("files: parents removed first", "utils/Files.cpp",
           "folders.rbegin(), folders.rend()", "folders.begin(), folders.end()"),

    # Locations
    Mutant("locations: wrong application data", "utils/Locations.cpp",
           "CSIDL_COMMON_APPDATA", "CSIDL_APPDATA"),
    Mutant("locations: pictures normalised", "utils/Locations.cpp",
           "return GetShellFolder(CSIDL_MYPICTURES);",
           "return NormalizePath(GetShellFolder(CSIDL_MYPICTURES));"),
    Mutant("locations: roaming turned round", "utils/Locations.cpp",
           "if (!roaming) {", "if (roaming) {"),
    Mutant("locations: a key stays open", "utils/Locations.cpp", "  RegCloseKey(key);\n", ""),
    Mutant("locations: deepest folder made first", "utils/Locations.cpp",
           "missing.rbegin(), missing.rend()", "missing.begin(), missing.end()"),
    Mutant("locations: a zero in a name ignored", "utils/Locations.cpp",
           "path.empty() || path.find(CodeUnit{0}) != vemora_ustring::npos", "path.empty()"),
    Mutant("locations: a folder below no location", "utils/Locations.cpp",
           "location.empty() ? location : ", ""),
    Mutant("locations: no room for the zero", "utils/Locations.cpp",
           "sizeof(text) - sizeof(wchar_t);", "sizeof(text);"),

    # Registry
    Mutant("registry: keys stay open", "utils/Registry.cpp",
           "RegCloseKey(key);", "static_cast<void>(key);"),
    Mutant("registry: names of twice the length", "utils/Registry.cpp",
           "kMaxNameLength = 32766", "kMaxNameLength = 65536"),
    Mutant("registry: a zero in a name ignored", "utils/Registry.cpp",
           " && name->find(L'\\0') == vemora_ustring::npos;", ";"),
    Mutant("registry: reads make no category", "utils/Registry.cpp",
           "CreateKey(path_key.get(), category, KEY_READ)", "OpenKey(path_key.get(), category)"),
    Mutant("registry: reads make the path", "utils/Registry.cpp",
           "const UniqueKey path_key = OpenKey(root, path);\n  return path_key != nullptr ?",
           "const UniqueKey path_key = CreateKey(root, path, kReadWrite);\n"
           "  return path_key != nullptr ?"),
    Mutant("registry: only 1 is true", "utils/Registry.cpp", "value != 0", "value == 1"),
    Mutant("registry: a sign behind a sign", "utils/Registry.cpp",
           " && narrow.compare(1, 1, \"-\") != 0", ""),
    Mutant("registry: leading blanks stay", "utils/Registry.cpp", "  text.TrimLeft();\n", ""),
    Mutant("registry: any number sign refused", "utils/Registry.cpp",
           "(*end == '#' && end[-1] == '.')", "*end == '#'"),
    Mutant("registry: seven decimals", "utils/Registry.cpp", "kDecimals = 6", "kDecimals = 7"),
    Mutant("registry: no terminating zero", "utils/Registry.cpp",
           "(value.size() + 1) * sizeof(wchar_t)", "value.size() * sizeof(wchar_t)"),
    Mutant("registry: text behind a zero kept", "utils/Registry.cpp",
           "  text.resize(std::min(text.find(L'\\0'), text.size()));\n", ""),
    Mutant("registry: bytes stored as text", "utils/Registry.cpp", "REG_BINARY", "REG_SZ"),
    Mutant("registry: separators name a category", "utils/Registry.cpp",
           "category.find_first_not_of(L'\\\\') != vemora_ustring::npos", "!category.empty()"),

    # WideFormat
    Mutant("format: no positions", "utils/WideFormat.cpp",
           "return _vscwprintf_p(", "return _vscwprintf("),
    Mutant("format: half of the buffer", "utils/WideFormat.cpp",
           "_vswprintf_p(buffer, capacity,", "_vswprintf_p(buffer, capacity / 2,"),
]
