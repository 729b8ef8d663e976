// What every process takes that loads a library with the imports of ours.
#include "empty_library.h"
#include "start.h"

int main() {
  const vemora::bench::Stopwatch stopwatch;
  const int nothing = GetNothing();
  stopwatch.Print();
  return nothing;
}
