#pragma once

#include <vector>

/// Gives the memory of a vector back; clearing it, or assigning {} to it, would keep the capacity.
template <typename Value>
void Release(std::vector<Value>& values) {
  std::vector<Value>().swap(values);
}

/// Bytes that the process can take up without the machine running out of memory; infinite where the system does not
/// tell.
double AvailableMemory();
