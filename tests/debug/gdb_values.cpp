// Values for GDB to show, see show_values.py.

#include <string_view>

#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"
#include "utils/Dictionary.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

namespace {

using vemora::prefs::LevelTable;
using vemora::prefs::NamePair;
using vemora::prefs::PreferenceRecord;
using vemora::prefs::StoredValue;
using vemora::utils::Dictionary;
using vemora::utils::Raw64;
using vemora::utils::Variant;
using vemora::utils::vemora_ustring;

const PreferenceRecord& Add(LevelTable& table, const vemora_ustring& key,
                            const StoredValue& value) {
  const NamePair names(vemora_ustring("Window"), key);
  table.Add(names, value);
  return *table.Find(names);
}

/// Where the debugger stops.
void Stop() {}

}  // namespace

int main() {
  const vemora_ustring text = vemora_ustring::FromUtf8("Entwürfe");
  const vemora_ustring no_text;

  const Variant empty;
  const Variant boolean = true;
  const Variant character = 'c';
  const Variant short_integer = static_cast<short>(-7);
  const Variant integer = 640;
  const Variant unsigned_integer = 4000000000U;
  const Variant single = 0.5F;
  const Variant real = 2.5;
  const Variant string = text;
  const Variant raw = Raw64{1, 2};
  const Variant vector = Variant::Vector{Variant(1), Variant(text)};
  const Variant map = Variant::Map{{"width", Variant(640)}, {"maximised", Variant(false)}};

  Dictionary dictionary;
  dictionary.Set("title", text);
  dictionary.Set("width", 640);
  const Dictionary no_entries;

  LevelTable level;
  [[maybe_unused]] const PreferenceRecord& integer_preference = Add(level, "Width", 640);
  [[maybe_unused]] const PreferenceRecord& boolean_preference = Add(level, "Maximised", true);
  [[maybe_unused]] const PreferenceRecord& real_preference = Add(level, "Zoom", 2.5);
  [[maybe_unused]] const PreferenceRecord& text_preference =
      Add(level, text, std::string_view("Ground floor"));
  [[maybe_unused]] const PreferenceRecord& other_preference = Add(level, "List", &vector);
  Add(level, "Erased", true);
  level.Erase({vemora_ustring("Window"), vemora_ustring("Erased")});
  const LevelTable no_preferences;

  Stop();
  return 0;
}
