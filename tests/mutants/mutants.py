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
    return [Program("mingw-debug", test) for test in tests]


def optimized(*tests):
    return [Program("mingw-release", test) for test in tests]


JSON = native("JsonCommon_test", "JsonLevels_test", "JsonDictionary_test", "JsonFiles_test",
              "ProtectedSave_test", "ProtectedMerge_test")

# The test files of each file, the cheapest first.
UNITS = {
    "prefs/JsonCommon.cpp": JSON + native("OutOfMemory_test"),
    "prefs/JsonCommonFiles.cpp": JSON,
    "prefs/Preferences.cpp": native("Preferences_test", "PreferencesRegistry_test"),
    "prefs/PreferencesBase.cpp": native("PreferencesBase_test", "PreferencesBaseFlush_test",
                                         "PreferencesBaseLifetime_test"),
    "prefs/PreferencesDefaults.cpp": native("PreferencesDefaults_test"),
    # The native registry knows no roots.
    "prefs/PreferencesRegistry.cpp": native("PreferencesRegistry_test",
                                            "IPreferencesContract_test") +
                                     windows("PreferencesRegistry_test"),
    "prefs/ShareLevel.cpp": native("JsonFiles_test"),
    "prefs/ShareLevelTable.cpp": native("ShareLevelTable_test"),
    "prefs/files/ProtectedFiles.cpp": native("ProtectedSave_test", "ProtectedMerge_test",
                                             "ProtectedSaveBadFiles_test") +
                                      windows("OverwrittenFiles_test"),
    "prefs/json/JsonNumber.cpp": native("JsonNumber_test"),
    "prefs/json/LevelsReader.cpp": native("LevelsReader_test", "LevelsReaderTexts_test"),
    "prefs/json/SurrogateEscapes.cpp": native("SurrogateEscapes_test"),
    "prefs/store/Arena.cpp": native("Arena_test"),
    "prefs/store/AsciiWord.h": native("AsciiWord_test", "NameHash_test", "Name_test"),
    "prefs/store/ChangeLog.cpp": native("ChangeLog_test"),
    "prefs/store/HashIndex.h": native("HashIndex_test"),
    "prefs/store/LevelBuilder.cpp": native("LevelBuilder_test"),
    "prefs/store/LevelMap.cpp": native("LevelMap_test"),
    "prefs/store/LevelTable.cpp": native("LevelTable_test", "LevelTableMemory_test"),
    "prefs/store/Name.cpp": native("Name_test"),
    "prefs/store/NameHash.cpp": native("NameHash_test"),
    "prefs/store/StoredValue.cpp": native("StoredValue_test") +
                                   [Program("tsan", "ConcurrentReads_posix_test")],
    "utils/DecimalText.cpp": native("DecimalText_test"),
    "utils/Dictionary.cpp": native("Dictionary_test"),
    "utils/FileIdentity.h": native("FileIdentity_test"),
    "utils/Files.cpp": windows("Files_test"),
    "utils/FolderRemoval.cpp": windows("Files_test"),
    "utils/Locations.cpp": windows("Locations_test"),
    "utils/PathText.cpp": native("PathText_test"),
    "utils/Product.h": native("PreferencesRegistry_test"),
    "utils/Registry.cpp": windows("Registry_test"),
    "utils/Singleton.h": native("Singleton_test"),
    "utils/SystemFile.cpp": windows("Files_test"),
    "utils/SystemFile.h": windows("Files_test"),
    "utils/Utf8.cpp": native("Utf8_test"),
    "utils/Variant.cpp": native("Variant_test"),
    "utils/WideFormat.cpp": optimized("vemora_ustring_test") + windows("vemora_ustring_windows_test"),
    "utils/vemora_ustring.h": native("vemora_ustring_test"),
}

MUTANTS = [
    # Values and texts
    Mutant("variant: a copy does not count its text", "utils/Variant.cpp",
           "      ++payload_.cell->references;\n", ""),
    Mutant("variant: assignment releases first", "utils/Variant.cpp",
           "  Variant old(std::move(other));\n"
           "  std::swap(type_, old.type_);\n"
           "  std::swap(payload_, old.payload_);\n",
           "  Release();\n"
           "  type_ = std::exchange(other.type_, kEmpty);\n"
           "  payload_ = std::exchange(other.payload_, Payload{{0, 0}});\n"),
    Mutant("variant: the largest int does not fit", "utils/Variant.cpp",
           "value < kInt32End;", "value < kInt32End - 1.0;"),
    Mutant("dictionary: Set keeps the old value", "utils/Dictionary.cpp",
           "values.insert_or_assign(key, value);", "values.emplace(key, value);"),
    Mutant("singleton: no exit hook", "utils/Singleton.h",
           "    static_cast<void>(std::atexit(&Singleton::Destroy));\n", ""),
    Mutant("path: a backslash separates nothing", "utils/PathText.cpp",
           "return unit == '/' || unit == '\\\\';", "return unit == '/';"),
    Mutant("path: a drive protects three", "utils/PathText.cpp",
           "path[2] == '/' ? 3 : 2", "path[2] == '/' ? 3 : 3"),
    Mutant("path: both separators of a join stay", "utils/PathText.cpp",
           "joined.append(second, skip ? 1 : 0);", "joined.append(second, skip ? 0 : 0);"),
    Mutant("text: no check for null", "utils/vemora_ustring.h",
           "    if (text != nullptr) {\n      assign(text);\n    }\n", "    assign(text);\n"),
    Mutant("text: surrogates are well-formed", "utils/Utf8.cpp",
           " || IsSurrogate(point)", ""),
    Mutant("decimal text: ties away from zero", "utils/DecimalText.cpp",
           "half && (more || groups_[0] % 2 != 0)", "half"),
    Mutant("format: no positions", "utils/WideFormat.cpp",
           "return _vscwprintf_p(", "return _vscwprintf("),

    # Back ends and what chooses them
    Mutant("base: write policy turned round", "prefs/PreferencesBase.cpp",
           "return !writeImmediately || SaveInt(", "return writeImmediately || SaveInt("),
    Mutant("base: a bool read back as what is an int", "prefs/PreferencesBase.cpp",
           "value->GetType() == Variant::kBool", "value->GetType() == Variant::kInt"),
    Mutant("base: category and key swapped", "prefs/PreferencesBase.cpp",
           "return SaveBinary(category, key, value);", "return SaveBinary(key, category, value);"),
    Mutant("registry store: flush turned round", "prefs/PreferencesRegistry.cpp",
           "if (!static_write_immediately_) {", "if (static_write_immediately_) {"),
    Mutant("registry store: wrong version", "utils/Product.h",
           "kProductVersion = 18", "kProductVersion = 17"),
    Mutant("registry store: wrong root", "prefs/PreferencesRegistry.cpp",
           "return Registry::PathExists(Registry::kCurrentUser,",
           "return Registry::PathExists(Registry::kLocalMachine,"),
    Mutant("front door: SetPath chooses nothing", "prefs/Preferences.cpp",
           "  use_json = false;\n", ""),
    Mutant("front door: one new path is none", "prefs/Preferences.cpp",
           "store.GetPrivatePath() ||", "store.GetPrivatePath() &&"),
    Mutant("defaults: a guard restores the first level", "prefs/PreferencesDefaults.cpp",
           "default_share_level = saved_level_;", "default_share_level = kNoShareLevel;"),
    Mutant("levels: a row of another level", "prefs/ShareLevelTable.cpp",
           '{"AutoSave", "AutoSaveFile", kWindowsOnly}',
           '{"AutoSave", "AutoSaveFile", kSharedForAllComputers}'),
    Mutant("levels: names swapped", "prefs/ShareLevel.cpp",
           '"Windows Only",       "Mac Only"', '"Mac Only",       "Windows Only"'),

    # The JSON store: operations and files
    Mutant("json store: a deletion leaves it clean", "prefs/JsonCommon.cpp",
           "Erase(names.pair);\n    SetChanged();\n", "Erase(names.pair);\n"),
    Mutant("json store: overwrite flag turned round", "prefs/JsonCommon.cpp",
           "if (!GetDefaultOverwriteFlag() &&", "if (GetDefaultOverwriteFlag() &&"),
    Mutant("json store: lost entries not told", "prefs/JsonCommon.cpp",
           "        all = false;\n", ""),
    Mutant("json store: no dictionary is put back", "prefs/JsonCommon.cpp",
           "    levels = old_levels;\n", ""),
    Mutant("json store: a missing file leaves it clean", "prefs/JsonCommonFiles.cpp",
           "dirty = !loaded.levels.has_value();", "dirty = false;"),
    Mutant("merge: what was deleted comes back", "prefs/store/ChangeLog.cpp",
           "*noted.GetBool() == kDeleted", "*noted.GetBool() == kWritten"),
    Mutant("merge: what no file can hold is lost", "prefs/store/ChangeLog.cpp",
           "if (changes.everything || !FitsIntoFile(value)) {", "if (changes.everything) {"),
    Mutant("merge: a changed file is taken for the own one", "prefs/files/ProtectedFiles.cpp",
           "found_hash != file_.changes->GetHash()", "file_.changes->GetHash() == 0"),
    Mutant("merge: a file that is written meanwhile is overwritten", "prefs/files/ProtectedFiles.cpp",
           "return utils::GetFileState(file_.path) == state_;", "return state_.has_value();"),

    # The JSON store: texts
    Mutant("reader: members within members count", "prefs/json/LevelsReader.cpp",
           "members_ += IsIn(kRoot) ? 1 : 0;", "++members_;"),
    Mutant("reader: half a text is taken", "prefs/json/LevelsReader.cpp",
           "return LoadedLevels(count);", "return handler.Take();"),
    Mutant("reader: a byte-order mark is text", "prefs/json/LevelsReader.cpp",
           "marked ? kByteOrderMark.size() : 0", "marked ? 0 : 0"),
    Mutant("reader: escaped pairs taken apart", "prefs/json/SurrogateEscapes.cpp",
           "!StartsWithEscape(text.substr(kEscapeSize), 0xDC00, 0xDFFF, low)",
           "!StartsWithEscape(text.substr(kEscapeSize), 0xDC00, 0xDDFF, low)"),
    Mutant("reader: too small is too large", "prefs/json/JsonNumber.cpp",
           "if (IsBelowOne(text)) {", "if (!IsBelowOne(text)) {"),
    Mutant("reader: 64 bits cut to 32", "prefs/json/JsonNumber.cpp",
           "return std::monostate();", "return static_cast<int>(large);"),

    # The JSON store: levels and names
    Mutant("builder: the first of equal names wins", "prefs/store/LevelBuilder.cpp",
           "    std::swap(kept.value, dropped.value);\n", ""),
    Mutant("builder: a category joins an earlier one", "prefs/store/LevelBuilder.cpp",
           "  table_.EmptyCategory(to);\n", ""),
    Mutant("table: an empty category stays", "prefs/store/LevelTable.cpp",
           "if (--category.count == 0) {", "if (category.count-- == 0) {"),
    Mutant("table: a text overruns the shorter one", "prefs/store/LevelTable.cpp",
           "text->size() <= preference.text_capacity", "text->size() <= preference.text_capacity + 9"),
    Mutant("table: waste is never dropped", "prefs/store/LevelTable.cpp",
           "wasted_ <= kNegligible ||", "true ||"),
    Mutant("map: copies change together", "prefs/store/LevelMap.cpp",
           "use_count() > 1", "use_count() > 2"),
    Mutant("index: the last of equal names is found", "prefs/store/HashIndex.h",
           "found = matched == ENameMatch::kByLocale ? ref : found;",
           "found = matched == ENameMatch::kByLocale && found == Arena::kNone ? ref : found;"),
    Mutant("arena: blocks are too small by a word", "prefs/store/Arena.cpp",
           "new Word[size]", "new Word[size - 1]"),
    Mutant("names: ordered by bytes", "prefs/store/Name.cpp",
           "left_unit = utils::FoldUnit(static_cast<CodeUnit>(left[index]));",
           "left_unit = static_cast<CodeUnit>(left[index]);"),
    Mutant("names: the end is not compared", "prefs/store/AsciiWord.h",
           "index < size; index += kWordSize", "index + kWordSize <= size; index += kWordSize"),
    Mutant("names: the hash tells case beyond ASCII", "prefs/store/NameHash.cpp",
           "CodeUnit{'I'}", "static_cast<CodeUnit>(units[index] & 0x3F)"),
    Mutant("names: the hash tells i from others", "prefs/store/AsciiWord.h",
           "_mm_set1_epi8('I')", "_mm_set1_epi8('J')"),
    Mutant("values: readers share texts", "prefs/store/StoredValue.cpp",
           "return vemora_ustring(value.GetString());", "return value;"),

    # What calls Windows
    Mutant("files: handles stay open", "utils/SystemFile.h",
           "CloseHandle(handle);", "static_cast<void>(handle);"),
    Mutant("files: other files of a disk are the same", "utils/FileIdentity.h",
           "volume == other.volume && index == other.index;", "volume == other.volume;"),
    Mutant("files: read-only files not rewritten", "utils/Files.cpp",
           "  DeleteFileIfPresent(path);\n  const UniqueHandle file(ValidOrNull(CreateFileW(path.c_str(), FILE_ALL",
           "  const UniqueHandle file(ValidOrNull(CreateFileW(path.c_str(), FILE_ALL"),
    Mutant("files: a zero in a name ignored", "utils/SystemFile.cpp",
           " && path.find(CodeUnit{0}) == vemora_ustring::npos;", ";"),
    Mutant("files: parents removed first", "utils/FolderRemoval.cpp",
           "folders.rbegin(), folders.rend()", "folders.begin(), folders.end()"),
    Mutant("locations: deepest folder made first", "utils/Locations.cpp",
           "missing.rbegin(), missing.rend()", "missing.begin(), missing.end()"),
    Mutant("registry: keys stay open", "utils/Registry.cpp",
           "RegCloseKey(key);", "static_cast<void>(key);"),
    Mutant("registry: reads make no category", "utils/Registry.cpp",
           "CreateKey(path_key.get(), category, KEY_READ)", "OpenKey(path_key.get(), category)"),
    Mutant("registry: text behind a zero kept", "utils/Registry.cpp",
           "  text.resize(std::min(text.find(L'\\0'), text.size()));\n", ""),
]
