/// @file
/// Makes the one instance of a class on first use and deletes it at process exit. Unguarded: used
/// from one thread.
#pragma once

#include <cstdlib>

namespace vemora::utils {

/// Base of a class T of which there is at most one instance.
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

  /// The instance, made when there is none. It is deleted by `Destroy` or, at the latest, when the
  /// process ends or the library that made it is unloaded.
  /// @throws std::bad_alloc when it cannot be made; the next call tries again
  static T& Get() {
    if (static_instance_ == nullptr) {
      static_instance_ = new T;
      // If the system takes no more exit hooks, the instance lives until `Destroy` is called.
      static_cast<void>(std::atexit(&Singleton::Destroy));
    }
    return *static_instance_;
  }

  /// Deletes the instance, if there is one. A later `Get` makes a new one.
  static void Destroy() {
    delete static_instance_;
    static_instance_ = nullptr;
  }

 protected:
  Singleton() = default;
  virtual ~Singleton() { static_instance_ = nullptr; }

 private:
  static T* static_instance_;
};

template <typename T>
T* Singleton<T>::static_instance_ = nullptr;

}  // namespace vemora::utils
