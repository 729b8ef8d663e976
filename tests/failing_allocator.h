/// @file
/// Makes a chosen allocation of a test program fail. The program has failing_allocator.cpp among
/// its sources, which replaces `operator new`.
#pragma once

#include <functional>

namespace vemora::testing {

/// Runs `operation` with room for that many allocations; false when it ran out of memory.
bool Succeeds(int allocations, const std::function<void()>& operation);

}  // namespace vemora::testing
