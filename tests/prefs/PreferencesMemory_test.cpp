// What the front door does with memory: when the store is made and deleted, and what happens when
// there is no room for it.

#include <cstdlib>
#include <new>

#include "prefs/Preferences.h"
#include "prefs/PreferencesJson.h"
#include "support.h"

namespace {

int stores_made = 0;
int stores_deleted = 0;
void* last_store = nullptr;
bool no_room_for_store = false;

void Release(void* memory) {
  if (memory != nullptr && memory == last_store) {
    ++stores_deleted;
    last_store = nullptr;
  }
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  const bool is_store = size == sizeof(vemora::prefs::PreferencesJson);
  void* memory = is_store && no_room_for_store ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  if (is_store) {
    ++stores_made;
    last_store = memory;
  }
  return memory;
}

// What a sort takes its buffer from, and does without.
void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept { Release(memory); }

void operator delete(void* memory, std::size_t /*size*/) noexcept { Release(memory); }

namespace vemora::prefs {
namespace {

class PreferencesMemory : public ::testing::Test {
 protected:
  PreferencesMemory() { Destroy(); }
  ~PreferencesMemory() override { Destroy(); }

  static void StartCounting() { stores_made = stores_deleted = 0; }
};

using PreferencesDestroy = PreferencesMemory;

TEST_F(PreferencesDestroy, WithoutAnInstanceMakesOneAndDeletesIt) {
  StartCounting();
  Destroy();
  EXPECT_EQ(stores_made, 1);
  EXPECT_EQ(stores_deleted, 1);
}

TEST_F(PreferencesDestroy, DeletesTheInstanceThatIsThere) {
  Get();
  StartCounting();
  Destroy();
  EXPECT_EQ(stores_made, 0);
  EXPECT_EQ(stores_deleted, 1);
}

TEST_F(PreferencesDestroy, MakesNoneUntilTheNextUse) {
  Get();
  Destroy();
  StartCounting();
  EXPECT_EQ(stores_made, 0);
  Get();
  EXPECT_EQ(stores_made, 1);
}

using PreferencesGet = PreferencesMemory;

TEST_F(PreferencesGet, ThrowsWithoutRoomForTheStoreAndTriesAgainOnTheNextCall) {
  StartCounting();
  no_room_for_store = true;
  EXPECT_THROW(Get(), std::bad_alloc);
  no_room_for_store = false;
  Get().WriteInt("Test", "key", 5);
  EXPECT_EQ(Get().ReadInt("Test", "key", 0), 5);
  EXPECT_EQ(stores_made, 1);
}

}  // namespace
}  // namespace vemora::prefs
