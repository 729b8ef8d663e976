// What every process takes.
#include "start.h"

int main() {
  const vemora::bench::Stopwatch stopwatch;
  stopwatch.Print();
}
