#pragma once

#include <cstddef>
#include <vector>

/// Gives the memory of a vector back; clearing it, or assigning {} to it, would keep the capacity.
template <typename Value>
void Release(std::vector<Value>& values) {
  std::vector<Value>().swap(values);
}

/// Asks the system to lay memory that has not been used yet into large pages: filling it takes a third of the time
/// then. A request, which may be in vain; below some megabytes it is not made.
void AskForLargePages(void* begin, std::size_t bytes);

/// Makes room in an empty vector or string, in large pages where there are some.
template <typename Values>
void ReserveLarge(Values& values, std::size_t count) {
  values.reserve(count);
  AskForLargePages(values.data(), count * sizeof(*values.data()));
}

/// Bytes that the process can take up without the machine running out of memory; infinite where the system does not
/// tell.
double AvailableMemory();
