// Many readers at once, or one writer, under a lock of the host's own. What is proved is what
// ThreadSanitizer sees, so the program is built with it, too: see the preset `tsan`.

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include "locale_support.h"
#include "prefs/ShareLevelTable.h"
#include "store_support.h"
#include "support.h"
#include "utils/Dictionary.h"

namespace vemora::testing {
namespace {

using utils::Dictionary;

constexpr int kReaders = 4;
constexpr int kRounds = 50;

/// Of which none is ASCII, and which two are equal to a locale that knows them.
const vemora_ustring kCategory = vemora_ustring::FromUtf8("Mat\xC3\xA9riaux");
const vemora_ustring kCategoryInUpperCase = vemora_ustring::FromUtf8("MAT\xC3\x89RIAUX");

/// Runs a function in several threads, which begin as nearly at once as they can.
void RunInThreads(int count, const std::function<void()>& function) {
  std::atomic<int> waiting = count;
  std::vector<std::thread> threads;
  for (int index = 0; index < count; ++index) {
    threads.emplace_back([&] {
      --waiting;
      while (waiting > 0) {
        std::this_thread::yield();
      }
      function();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(FirstReads, OfSeveralThreadsMakeOneSetOfKeysForTheHashes) {
  std::atomic<int> found = 0;
  RunInThreads(kReaders, [&found] {
    JsonCommon store;
    store.WriteInt("Category", "key", 1);
    found += store.ReadInt("Category", "key", 0);
  });
  EXPECT_EQ(found, kReaders);
}

vemora_ustring KeyOf(int number) {
  return vemora_ustring::FromUtf8("key " + std::to_string(number));
}

/// A store that others read while one writes to it, under the lock that the guide tells of.
class ConcurrentReads : public ::testing::Test {
 protected:
  ConcurrentReads() : locale("C.UTF-8") {
    opened.SetSavePrefsFlag(false, false);
    opened.LoadPreferences();  // how preferences are classified
    const Variant::Vector list = {Variant(vemora_ustring("nested")), Variant(2)};
    const Variant::Map nested = {{"list", Variant(list)}, {"text", Variant(kCategory)}};
    for (const vemora_ustring& category : {vemora_ustring("Category"), kCategory}) {
      opened.WriteInt(category, "int", 1);
      opened.WriteBool(category, "bool", true);
      opened.WriteDouble(category, "double", 0.5);
      opened.WriteString(category, "text", "a text that is too long for the string itself");
      opened.WriteString(category, kCategory, kCategory);
      opened.WriteValueToMaps(category, "nested", nested);
    }
    for (int number = 0; number < kMany; ++number) {
      opened.WriteInt("Many", KeyOf(number), number);
    }
    for (const prefs::ShareLevelEntry& entry : classified) {
      opened.WriteInt(entry.category, entry.key, 1);
    }
    Dictionary dictionary;
    dictionary.Set("text", kCategory);
    opened.WriteDictionary("Window", dictionary);
    store = opened;
  }

  /// Calls `read` in several threads, again and again, while another one writes now and then.
  template <typename Store>
  void ReadWhileOneWrites(Store& common, const std::function<void(Store&)>& read) {
    std::atomic<int> next = 0;
    RunInThreads(kReaders + 1, [&] {
      const bool writes = next++ == 0;
      for (int round = 0; round < kRounds; ++round) {
        if (writes) {
          const std::unique_lock<std::shared_mutex> lock(mutex);
          Write(common, round);
        } else {
          const std::shared_lock<std::shared_mutex> lock(mutex);
          read(common);
        }
        std::this_thread::yield();
      }
    });
  }

  void ReadWhileOneWrites(const std::function<void(JsonCommon&)>& read) {
    ReadWhileOneWrites<JsonCommon>(store, read);
  }

  static void Write(JsonCommon& common, int round) {
    common.WriteInt("Category", "int", round);
    common.WriteString(kCategory, "text", KeyOf(round));
    common.WriteBool("Others", KeyOf(round), true);
    common.DeletePreference(kCategory, "bool");
  }

  static constexpr int kMany = 500;

  const ScopedLocale locale;
  const std::vector<prefs::ShareLevelEntry> classified = prefs::MakeShareLevelTable();
  std::shared_mutex mutex;
  OpenStore opened;
  // The very class, for the library takes a shorter way to it than to classes of a host.
  JsonCommon store;
};

TEST_F(ConcurrentReads, OfManyPreferences) {
  ReadWhileOneWrites([](JsonCommon& read) {
    for (int number = 0; number < kMany; ++number) {
      ASSERT_EQ(read.ReadInt("Many", KeyOf(number), -1), number);
    }
  });
}

TEST_F(ConcurrentReads, OfClassifiedPreferences) {
  ReadWhileOneWrites([this](JsonCommon& read) {
    for (const prefs::ShareLevelEntry& entry : classified) {
      ASSERT_EQ(read.ReadInt(entry.category, entry.key, -1), 1);
    }
  });
}

TEST_F(ConcurrentReads, OfInts) {
  ReadWhileOneWrites([](JsonCommon& read) {
    EXPECT_GE(read.ReadInt("Category", "INT", -1), 0);
    EXPECT_EQ(read.ReadInt(kCategoryInUpperCase, "INT", -1), 1);
  });
}

TEST_F(ConcurrentReads, OfBools) {
  ReadWhileOneWrites(
      [](JsonCommon& read) { EXPECT_TRUE(read.ReadBool("Category", "bool", false)); });
}

TEST_F(ConcurrentReads, OfDoubles) {
  ReadWhileOneWrites(
      [](JsonCommon& read) { EXPECT_EQ(read.ReadDouble(kCategory, "double", 0), 0.5); });
}

TEST_F(ConcurrentReads, OfTexts) {
  ReadWhileOneWrites([](JsonCommon& read) {
    EXPECT_EQ(read.ReadString(kCategory, kCategoryInUpperCase, ""), kCategory);
    EXPECT_NE(read.ReadString(kCategory, "text", "none"), vemora_ustring("none"));
  });
}

TEST_F(ConcurrentReads, OfBytes) {
  ReadWhileOneWrites(
      [](JsonCommon& read) { EXPECT_EQ(read.ReadBinary("Category", "int", "default"), ""); });
}

TEST_F(ConcurrentReads, OfWhatIsMissing) {
  ReadWhileOneWrites([](JsonCommon& read) {
    EXPECT_EQ(read.ReadInt("Category", "missing", -1), -1);
    EXPECT_EQ(read.ReadString(vemora_ustring::FromUtf8("Mat\xC3\xA8riaux"), "text", kCategory),
              kCategory);
  });
}

TEST_F(ConcurrentReads, OfWhetherPreferencesAndCategoriesExist) {
  ReadWhileOneWrites([](JsonCommon& read) {
    EXPECT_TRUE(read.IsPreferenceSet(kCategoryInUpperCase, "int"));
    EXPECT_TRUE(read.CategoryExists(kCategoryInUpperCase));
    EXPECT_FALSE(read.CategoryExists("Nothing"));
  });
}

TEST_F(ConcurrentReads, OfLevels) {
  ReadWhileOneWrites([](JsonCommon& read) {
    EXPECT_EQ(read.GetLevel("AutoSave", "AutoSaveFile"), prefs::kWindowsOnly);
    EXPECT_EQ(read.GetLevel(kCategory, "int"), prefs::kThisComputerOnly);
    EXPECT_FALSE(read.IsLevelEmpty(prefs::kThisComputerOnly));
  });
}

TEST_F(ConcurrentReads, OfDictionaries) {
  ReadWhileOneWrites([](JsonCommon& read) {
    Dictionary dictionary;
    read.ReadDictionary("Window", dictionary);
    EXPECT_EQ(dictionary.Size(), 1U);
  });
}

TEST_F(ConcurrentReads, OfVariantsWithinVariants) {
  ReadWhileOneWrites<OpenStore>(opened, [](OpenStore& read) {
    Variant value = read.GetValueFromMaps(kCategory, "nested");
    EXPECT_EQ(value.Get("list").Size(), 2U);
    value.Get("text") = Variant(1);  // this thread's own
  });
}

TEST_F(ConcurrentReads, OfAllPreferences) {
  ReadWhileOneWrites([](JsonCommon& read) {
    std::size_t count = 0;
    read.ForEachPreference([&count](auto, const auto&, const auto&, const Variant& value) {
      count += Variant(value).GetType() != Variant::kEmpty ? 1 : 0;
    });
    EXPECT_GE(count, 12U);
  });
}

TEST_F(ConcurrentReads, OfTheCategories) {
  ReadWhileOneWrites(
      [](JsonCommon& read) { EXPECT_GE(read.GetCategories(prefs::kThisComputerOnly).size(), 3U); });
}

TEST_F(ConcurrentReads, OfThePaths) {
  ReadWhileOneWrites([](JsonCommon& read) { EXPECT_TRUE(read.GetSharedPath().empty()); });
}

TEST_F(ConcurrentReads, ByCopiesOfTheStore) {
  ReadWhileOneWrites([](JsonCommon& read) {
    JsonCommon copy = read;
    copy.WriteInt("Category", "int", -2);
    EXPECT_EQ(copy.ReadInt("Category", "int", 0), -2);
  });
}

TEST_F(ConcurrentReads, OfACopyNeedNoLock) {
  const auto take_copy = [&] {
    const std::shared_lock<std::shared_mutex> lock(mutex);
    return std::make_unique<JsonCommon>(store);
  };
  RunInThreads(2, [&, next = std::make_shared<std::atomic<int>>(0)] {
    const bool writes = (*next)++ == 0;
    for (int round = 0; round < kRounds; ++round) {
      if (writes) {
        const std::unique_lock<std::shared_mutex> lock(mutex);
        Write(store, round);
      } else {
        std::unique_ptr<JsonCommon> own = take_copy();
        EXPECT_GE(own->ReadInt("Category", "int", -1), 0);
        EXPECT_NE(own->ReadString(kCategory, "text", "none"), vemora_ustring("none"));
        // Gone under the lock: what orders that and the next write is a fence, and ThreadSanitizer
        // knows no fences.
        const std::shared_lock<std::shared_mutex> lock(mutex);
        own.reset();
      }
    }
  });
}

}  // namespace
}  // namespace vemora::testing
