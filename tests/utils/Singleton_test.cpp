#include "utils/Singleton.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <type_traits>

#include "support.h"

namespace vemora::utils {
namespace {

/// What happened to the instances of a class so far.
struct Life {
  int made = 0;
  int deleted = 0;
};

class Settings : public Singleton<Settings> {
 public:
  ~Settings() override { ++life.deleted; }

  static inline Life life;

 private:
  friend class Singleton<Settings>;
  Settings() { ++life.made; }
};

static_assert(!std::is_copy_constructible_v<Settings>);
static_assert(!std::is_copy_assignable_v<Settings>);
static_assert(!std::is_default_constructible_v<Settings>, "made by Get only");
static_assert(!std::is_default_constructible_v<Singleton<Settings>>);
static_assert(!std::is_destructible_v<Singleton<Settings>>, "the destructor is protected");
static_assert(std::is_polymorphic_v<Singleton<Settings>>);
static_assert(sizeof(Singleton<Settings>) == sizeof(void*), "the table pointer and no data");

class SingletonTest : public ::testing::Test {
 protected:
  SingletonTest() {
    Settings::Destroy();
    Settings::life = {};
  }
};

TEST_F(SingletonTest, IsNotMadeBeforeItIsAskedFor) { EXPECT_EQ(Settings::life.made, 0); }

TEST_F(SingletonTest, IsOneObject) {
  Settings& first = Settings::Get();
  EXPECT_EQ(&Settings::Get(), &first);
  EXPECT_EQ(Settings::life.made, 1);
}

TEST_F(SingletonTest, IsDeletedByDestroy) {
  Settings::Get();
  Settings::Destroy();
  EXPECT_EQ(Settings::life.deleted, 1);
}

TEST_F(SingletonTest, IsNotMadeByDestroy) {
  Settings::Destroy();
  EXPECT_EQ(Settings::life.made, 0);
  EXPECT_EQ(Settings::life.deleted, 0);
}

TEST_F(SingletonTest, IsDeletedOnceOnly) {
  Settings::Get();
  Settings::Destroy();
  Settings::Destroy();
  EXPECT_EQ(Settings::life.deleted, 1);
}

TEST_F(SingletonTest, IsMadeAnewAfterDestroy) {
  Settings::Get();
  Settings::Destroy();
  Settings& second = Settings::Get();
  EXPECT_EQ(Settings::life.made, 2);
  EXPECT_EQ(&Settings::Get(), &second);
}

TEST_F(SingletonTest, IsForgottenWhenDeletedOtherwise) {
  delete &Settings::Get();
  Settings::Destroy();
  EXPECT_EQ(Settings::life.deleted, 1);
  Settings::Get();
  EXPECT_EQ(Settings::life.made, 2);
}

TEST_F(SingletonTest, IsForgottenWhenDeletedThroughItsBase) {
  struct Base {
    virtual ~Base() = default;
  };
  struct Derived : Base, Singleton<Derived> {};
  Base* const first = &Derived::Get();
  delete first;
  Derived& second = Derived::Get();
  EXPECT_EQ(&Derived::Get(), &second);
  Derived::Destroy();
}

/// Fails to be made at first: for want of memory, then in its constructor.
class Reluctant : public Singleton<Reluctant> {
 public:
  static void* operator new(std::size_t size) {
    if (attempts++ == 0) {
      throw std::bad_alloc();
    }
    return ::operator new(size);
  }
  static void operator delete(void* memory) { ::operator delete(memory); }

  static inline int attempts = 0;

 private:
  friend class Singleton<Reluctant>;
  Reluctant() {
    if (attempts == 2) {
      throw std::bad_alloc();
    }
  }
};

TEST(SingletonFailure, IsPassedOnAndTheNextCallTriesAgain) {
  EXPECT_THROW(Reluctant::Get(), std::bad_alloc);
  EXPECT_THROW(Reluctant::Get(), std::bad_alloc);
  Reluctant& instance = Reluctant::Get();
  EXPECT_EQ(&Reluctant::Get(), &instance);
  EXPECT_EQ(Reluctant::attempts, 3);
}

/// Tells of its end.
class Speaking : public Singleton<Speaking> {
 public:
  ~Speaking() override { std::fputs("deleted.", stderr); }
};

TEST(SingletonDeathTest, IsDeletedAtProcessExit) {
  EXPECT_EXIT(
      {
        Speaking::Get();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^deleted\\.$");
}

TEST(SingletonDeathTest, IsDeletedAtProcessExitWhenItWasMadeAnew) {
  EXPECT_EXIT(
      {
        Speaking::Get();
        Speaking::Destroy();
        Speaking::Get();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^deleted\\.deleted\\.$");
}

TEST(SingletonDeathTest, IsNotDeletedAgainAtProcessExit) {
  EXPECT_EXIT(
      {
        Speaking::Get();
        Speaking::Destroy();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^deleted\\.$");
}

TEST(SingletonDeathTest, IsNotMadeAtProcessExit) {
  EXPECT_EXIT(std::exit(0), ::testing::ExitedWithCode(0), "^$");
}

}  // namespace
}  // namespace vemora::utils
