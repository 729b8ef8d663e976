// Values for GDB to show, see show_values.py.

#include <string_view>

#include "prefs/FoldedName.h"
#include "prefs/PreferenceMap.h"
#include "utils/Dictionary.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

namespace {

using vemora::prefs::FoldedPair;
using vemora::prefs::Preference;
using vemora::prefs::PreferenceMap;
using vemora::prefs::PreferenceValue;
using vemora::utils::Dictionary;
using vemora::utils::Raw64;
using vemora::utils::Variant;
using vemora::utils::vemora_ustring;

const Preference& Add(const vemora_ustring& key, const PreferenceValue& value) {
  static PreferenceMap map;
  const vemora_ustring category = "Window";
  const FoldedPair pair(category, key);
  map.Add(pair, value);
  return *map.Find(pair);
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

  [[maybe_unused]] const Preference& integer_preference = Add("Width", 640);
  [[maybe_unused]] const Preference& boolean_preference = Add("Maximised", true);
  [[maybe_unused]] const Preference& real_preference = Add("Zoom", 2.5);
  [[maybe_unused]] const Preference& text_preference = Add(text, std::string_view("Ground floor"));
  [[maybe_unused]] const Preference& other_preference = Add("List", &vector);

  Stop();
  return 0;
}
