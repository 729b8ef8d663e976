#include "prefs/JsonText.h"

#include <utility>

namespace vemora::prefs {

void JsonText::Grow(std::size_t bytes) {
  const std::size_t size = Size();
  const std::size_t capacity = size + std::max(size, bytes);
  std::unique_ptr<char[]> text(new char[capacity]);
  std::copy(text_.get(), end_, text.get());
  text_ = std::move(text);
  end_ = text_.get() + size;
  limit_ = text_.get() + capacity;
}

}  // namespace vemora::prefs
