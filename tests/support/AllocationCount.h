#pragma once

#include <cstddef>

/// How often the process has asked `operator new` for memory so far. A test executable that lists AllocationCount.cpp
/// among its sources replaces the operators of the whole program by counting ones.
std::size_t AllocationCount();
/// Lets the `count`-th allocation of at least so many bytes from now on fail, 0 being the next one; all others succeed.
/// Below 0: none fails.
void FailAllocation(long count, std::size_t fromSize = 0);
/// Whether the allocation that was to fail has been asked for.
bool HasAllocationFailed();
