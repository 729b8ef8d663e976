// Several threads that use the preferences one at a time.

#include <iostream>
#include <mutex>
#include <thread>

#include "prefs/Preferences.h"
#include "prefs/PreferencesDefaults.h"

namespace prefs = vemora::prefs;

namespace {

// Whoever has one of these has the preferences, and the defaults, to itself.
class LockedPreferences {
 public:
  prefs::IPreferences* operator->() const { return &prefs::Get(); }

 private:
  static inline std::mutex mutex_;
  std::lock_guard<std::mutex> lock_{mutex_};
};

void Count(int times) {
  for (int i = 0; i < times; ++i) {
    const LockedPreferences preferences;  // first, so that it goes last
    const prefs::ShareLevelOverride travels(prefs::kSharedForAllComputers);
    preferences->WriteInt(L"My Plugin", L"Count",
                          preferences->ReadInt(L"My Plugin", L"Count", 0) + 1);
  }
}

}  // namespace

int main() {
  constexpr int kTimes = 1000;
  std::thread first(Count, kTimes);
  std::thread second(Count, kTimes);
  first.join();
  second.join();

  const prefs::ShareLevelOverride travels(prefs::kSharedForAllComputers);
  std::cout << "counted to " << prefs::Get().ReadInt(L"My Plugin", L"Count", 0) << '\n';
  return 0;
}
