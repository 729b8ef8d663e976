/// @file
/// Text that is being written. Internal to the library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

namespace vemora::prefs {

/// Text that grows at its end. It is a stream that RapidJSON writes to.
class JsonText {
 public:
  using Ch = char;

  explicit JsonText(std::size_t expectedSize)
      : text_(new char[expectedSize]), end_(text_.get()), limit_(end_ + expectedSize) {}

  std::string_view View() const { return {text_.get(), Size()}; }

  /// Where so many bytes may be written. They are of the text when `End` is told of them.
  char* Reserve(std::size_t bytes) {
    if (static_cast<std::size_t>(limit_ - end_) < bytes) {
      Grow(bytes);
    }
    return end_;
  }
  void End(char* end) { end_ = end; }

  void Put(char character) {
    *Reserve(1) = character;
    ++end_;
  }
  void Append(std::string_view text) {
    End(std::copy(text.begin(), text.end(), Reserve(text.size())));
  }
  void Flush() {}

 private:
  std::size_t Size() const { return static_cast<std::size_t>(end_ - text_.get()); }
  void Grow(std::size_t bytes);

  std::unique_ptr<char[]> text_;  // not initialized, unlike that of a std::string
  char* end_;
  char* limit_;
};

}  // namespace vemora::prefs
