// A shared and a private file of any bytes: what a store loads from them it saves, and another
// store that loads what was saved has the same preferences.
#include "fuzz/fuzz_support.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

/// Stands between the two files; without it there is no private file.
constexpr std::string_view kSeparator = "\n%%\n";

void WriteFiles(std::string_view input) {
  vemora::prefs::JsonCommon files;
  files.SetPaths(kPrivateFile, kSharedFile);
  files.DeletePreferences();
  const std::size_t end = input.find(kSeparator);
  WriteFile(kSharedFile, input.substr(0, end));
  if (end != std::string_view::npos) {
    WriteFile(kPrivateFile, input.substr(end + kSeparator.size()));
  }
}

void Load(OpenStore& store) {
  store.SetSavePrefsFlag(false, false);
  store.LoadSharedPreferences();
  store.LoadPrivatePreferences();
}

void CheckEqual(OpenStore& store, OpenStore& other) {
  for (std::size_t level = 0; level < vemora::prefs::kShareLevelCount; ++level) {
    const auto share_level = static_cast<EShareLevel>(level);
    Check(store.IsLevelEmpty(share_level) == other.IsLevelEmpty(share_level),
          "a level that was not empty is not empty when it is loaded again");
  }
  for (const SavedCategory& category : ReadSavedFiles(kPrivateFile, kSharedFile)) {
    Check(store.CategoryExists(category.name), "a saved category is in the store");
    Check(other.CategoryExists(category.name), "a saved category is loaded");
    for (const vemora_ustring& key : category.keys) {
      const Value value = store.ReadAny(category.level, category.name, key);
      Check(!IsNothing(value), "a saved preference is in the store");
      Check(value == other.ReadAny(category.level, category.name, key),
            "a saved preference is loaded with its type and value");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  UseUnicodeLocale();
  WriteFiles({reinterpret_cast<const char*>(data), size});
  OpenStore first;
  Load(first);
  first.SavePreferences();
  const auto shared_text = ReadFile(kSharedFile);
  const auto private_text = ReadFile(kPrivateFile);

  OpenStore second;
  Load(second);
  CheckEqual(first, second);
  second.SavePreferences();
  Check(ReadFile(kSharedFile) == shared_text, "the shared file is saved as it was loaded");
  Check(ReadFile(kPrivateFile) == private_text, "the private file is saved as it was loaded");
  return 0;
}
