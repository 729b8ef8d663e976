/// @file
/// Text that is being written. Internal to the library.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace vemora::prefs {

/// Text that grows at its end, without filling new memory as a std::string does. RapidJSON writes
/// to it as to any stream of its own.
class TextBuffer {
 public:
  using Ch = char;

  explicit TextBuffer(std::size_t expectedSize)
      : text_(new char[expectedSize]), capacity_(expectedSize) {}

  std::string_view View() const { return {text_.get(), size_}; }

  /// Makes room for so many more characters.
  /// @throws std::bad_alloc
  void Reserve(std::size_t count) {
    if (capacity_ - size_ < count) {
      Grow(count);
    }
  }

  void Put(char character) {
    Reserve(1);
    PutReserved(character);
  }

  /// For characters for which there is room.
  void PutReserved(char character) { text_[size_++] = character; }

  void Flush() {}

 private:
  void Grow(std::size_t count) {
    const std::size_t capacity = capacity_ + (capacity_ > count ? capacity_ : count);
    std::unique_ptr<char[]> text(new char[capacity]);
    std::memcpy(text.get(), text_.get(), size_);
    text_ = std::move(text);
    capacity_ = capacity;
  }

  std::unique_ptr<char[]> text_;
  std::size_t capacity_;
  std::size_t size_ = 0;
};

/// What RapidJSON calls for a character, found by the type of the stream.
/// @{
inline void PutReserve(TextBuffer& text, std::size_t count) { text.Reserve(count); }
inline void PutUnsafe(TextBuffer& text, char character) { text.PutReserved(character); }
/// @}

}  // namespace vemora::prefs
