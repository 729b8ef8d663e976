/// @file
/// How much of a long test runs: a sample of it with all other tests, the whole in `./dev stress`.
/// The entries of such tests carry the label "stress".
#pragma once

#include <cstdlib>
#include <string_view>

namespace vemora::testing {

/// `whole` in `./dev stress`, else `sample`: a number of repetitions, or the step of a loop.
template <typename Number>
Number WholeOrSample(Number whole, Number sample) {
  const char* const stress = std::getenv("COMMONPREFERENCES_STRESS");
  return stress != nullptr && std::string_view(stress) == "1" ? whole : sample;
}

}  // namespace vemora::testing
