// What Destroy does where it can't be seen from outside: the memory it takes and gives back.

#include <cstdlib>
#include <new>

#include "prefs/Preferences.h"
#include "prefs/PreferencesJson.h"
#include "support.h"

namespace {

int stores_made = 0;
int stores_deleted = 0;
void* last_store = nullptr;

void Release(void* memory) {
  if (memory != nullptr && memory == last_store) {
    ++stores_deleted;
    last_store = nullptr;
  }
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  if (size == sizeof(vemora::prefs::PreferencesJson)) {
    ++stores_made;
    last_store = memory;
  }
  return memory;
}

void operator delete(void* memory) noexcept { Release(memory); }

void operator delete(void* memory, std::size_t /*size*/) noexcept { Release(memory); }

namespace vemora::prefs {
namespace {

class PreferencesDestroy : public ::testing::Test {
 protected:
  PreferencesDestroy() { Destroy(); }
  ~PreferencesDestroy() override { Destroy(); }

  static void StartCounting() { stores_made = stores_deleted = 0; }
};

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

}  // namespace
}  // namespace vemora::prefs
