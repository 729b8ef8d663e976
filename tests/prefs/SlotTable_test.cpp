#include "prefs/SlotTable.h"

#include <map>
#include <random>
#include <utility>
#include <vector>

#include "support.h"

namespace vemora::prefs {
namespace {

constexpr auto kAny = [](std::uint32_t) { return true; };

std::uint32_t FindExactly(const SlotTable& table, std::uint32_t hash, std::uint32_t number) {
  return table.Find(hash, [number](std::uint32_t found) { return found == number; });
}

void Add(SlotTable& table, std::uint32_t hash, std::uint32_t number) {
  table.Reserve(1);
  table.Add(hash, number);
}

TEST(SlotTable, FindsNothingWhenItIsEmpty) {
  EXPECT_EQ(SlotTable().Find(7, kAny), SlotTable::kNone);
}

TEST(SlotTable, FindsANumberByItsHash) {
  SlotTable table;
  Add(table, 7, 70);
  Add(table, 8, 80);
  EXPECT_EQ(table.Find(7, kAny), 70U);
  EXPECT_EQ(table.Find(8, kAny), 80U);
  EXPECT_EQ(table.Find(9, kAny), SlotTable::kNone);
}

TEST(SlotTable, LooksForAHashThatSharesASlotWithAnother) {
  SlotTable table;
  Add(table, 1, 10);
  EXPECT_EQ(table.Find(1 + 16, kAny), SlotTable::kNone);
  Add(table, 1 + 16, 20);
  EXPECT_EQ(table.Find(1 + 16, kAny), 20U);
}

TEST(SlotTable, AsksTheCallerAmongNumbersWithOneHash) {
  SlotTable table;
  for (std::uint32_t number = 0; number < 100; ++number) {
    Add(table, 7, number);
  }
  EXPECT_EQ(FindExactly(table, 7, 99), 99U);
  EXPECT_EQ(FindExactly(table, 7, 100), SlotTable::kNone);
}

TEST(SlotTable, AddsManyButThoseThatTheCallerTakesForOthers) {
  SlotTable table;
  std::vector<SlotTable::Slot> slots;
  for (std::uint32_t number = 0; number < 100; ++number) {
    slots.push_back({number % 10, number});
  }
  table.Reserve(slots.size());
  // Numbers of one hash are one when they are in the same half.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> replaced;
  table.Add(slots, [&](std::uint32_t other, std::uint32_t number) {
    const bool same = other / 50 == number / 50;
    if (same) {
      replaced.emplace_back(other, number);
    }
    return same;
  });
  EXPECT_EQ(table.Count(), 20U);
  EXPECT_EQ(replaced.size(), 80U);
  for (std::uint32_t number = 0; number < 100; ++number) {
    const bool is_first = number % 50 < 10;
    EXPECT_EQ(FindExactly(table, number % 10, number), is_first ? number : SlotTable::kNone);
  }
}

TEST(SlotTable, RemovesOneOfEqualNumbersByItsHash) {
  SlotTable table;
  Add(table, 1, 5);
  Add(table, 1 + 16, 5);
  table.Remove(1 + 16, 5);
  EXPECT_EQ(table.Find(1, kAny), 5U);
  EXPECT_EQ(table.Find(1 + 16, kAny), SlotTable::kNone);
}

TEST(SlotTable, NeverLooksWithoutEndForWhatIsNotThere) {
  SlotTable table;
  for (std::uint32_t hash = 0; hash < 1000; ++hash) {
    Add(table, hash, hash);
    ASSERT_EQ(table.Find(hash + 1, kAny), SlotTable::kNone);
  }
}

TEST(SlotTable, KeepsItsNumbersWhenItGrows) {
  SlotTable table;
  Add(table, 7, 70);
  table.Reserve(100'000);
  EXPECT_EQ(table.Find(7, kAny), 70U);
}

TEST(SlotTable, FindsWhatAMapFindsAfterManyAdditionsAndRemovals) {
  SlotTable table;
  std::map<std::uint32_t, std::uint32_t> model;  // hash by number
  std::mt19937 random(1);
  for (std::uint32_t number = 0; number < 20'000; ++number) {
    // Few hashes, and many that want slots near the end of the table.
    const std::uint32_t hash = random() % 64 == 0 ? random() % 8 : 0xFFFFFFF0U + random() % 16;
    Add(table, hash, number);
    model.emplace(number, hash);
    while (model.size() > 40) {
      const auto victim =
          std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size()));
      table.Remove(victim->second, victim->first);
      EXPECT_EQ(FindExactly(table, victim->second, victim->first), SlotTable::kNone);
      model.erase(victim);
    }
    ASSERT_EQ(table.Count(), model.size());
    for (const auto& [known, known_hash] : model) {
      ASSERT_EQ(FindExactly(table, known_hash, known), known);
    }
  }
}

}  // namespace
}  // namespace vemora::prefs
