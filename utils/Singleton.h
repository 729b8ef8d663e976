/// @file
/// Makes an instance of a class on first use and deletes it when the process ends in an orderly
/// way. Unguarded: used from one thread.
#pragma once

#include <cstdlib>

namespace vemora::utils {

/// Base of a class T of which each library or program that instantiates this template has at most
/// one instance, as long as nobody but `Get` makes any.
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

  /// The instance, made when there is none. `Destroy` deletes it, or an exit hook does when the
  /// process ends by `exit` or a return from `main`, or when the library that made it is unloaded,
  /// which happens at `_exit` and `abort`, too. A process that is killed or crashes, or a system
  /// that takes no more hooks, leaves it.
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
