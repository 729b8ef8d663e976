/// @file
/// Makes an instance of a class on first use and deletes it when the process ends in an orderly
/// way. It has no lock, so use it from one thread.
#pragma once

#include <cstdlib>

namespace vemora::utils {

/// Base of a class T that has at most one instance in each library or program that instantiates
/// this template, as long as only `Get` makes instances.
///
/// T derives from `Singleton<T>`, names it a friend and keeps its own constructor private:
///
///     class Settings : public Singleton<Settings> {
///       friend class Singleton<Settings>;
///       Settings() = default;
///     };
///     Settings& settings = Settings::Get();
template <typename T>
class Singleton {
 public:
  Singleton(const Singleton&) = delete;
  Singleton& operator=(const Singleton&) = delete;

  /// The instance. It is made if there is none. `Destroy` deletes it. Otherwise an exit hook
  /// deletes it when the process ends by `exit` or a return from `main`, or when the library that
  /// made it is unloaded, which also happens at `_exit` and `abort`. It is not deleted if the
  /// process is killed or crashes, or if the system takes no more hooks.
  /// @throws std::bad_alloc when it cannot be made; the next call tries again
  static T& Get();

  /// Deletes the instance, if there is one. A later `Get` makes a new one.
  static void Destroy();

 protected:
  Singleton() = default;
  virtual ~Singleton();

 private:
  static T* static_instance_;
};

template <typename T>
T* Singleton<T>::static_instance_ = nullptr;

// Outside the class, and so not inline: a library can then export its instance whole.

template <typename T>
T& Singleton<T>::Get() {
  if (static_instance_ == nullptr) {
    static_instance_ = new T;
    // If the system takes no more exit hooks, the instance lives until `Destroy` is called.
    static_cast<void>(std::atexit(&Singleton::Destroy));
  }
  return *static_instance_;
}

template <typename T>
void Singleton<T>::Destroy() {
  delete static_instance_;
  static_instance_ = nullptr;
}

template <typename T>
Singleton<T>::~Singleton() {
  static_instance_ = nullptr;
}

}  // namespace vemora::utils
