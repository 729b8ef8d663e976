// The same with nlohmann::json.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "start.h"

int main() {
  const vemora::bench::Stopwatch stopwatch;
  std::FILE* const file = std::fopen(BENCH_S_FOLDER "/nlohmann.json", "rb");
  if (file == nullptr) {
    return 1;
  }
  static char text[1 << 20];
  const std::size_t size = std::fread(text, 1, sizeof(text), file);
  std::fclose(file);
  const nlohmann::json document = nlohmann::json::parse(text, text + size);
  int sum = 0;
  for (const auto& [category, key] : vemora::bench::kFirstReads) {
    const nlohmann::json& value = document.at(category).at(key);
    sum += value.is_number_integer() ? value.get<int>() : 0;
  }
  stopwatch.Print();
  return sum != 0 ? 0 : 1;
}
