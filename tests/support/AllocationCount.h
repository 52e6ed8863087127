#pragma once

#include <cstddef>

/// How often the process has asked `operator new` for memory so far. A test executable that lists AllocationCount.cpp
/// among its sources replaces the operators of the whole program by counting ones.
std::size_t AllocationCount();
