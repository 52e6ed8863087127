#pragma once

#include <cstddef>
#include <cstdint>

/// What a fuzzer, or the replay of its corpus, calls with every input: reads it as a file of one kind and ends the
/// process where something is wrong. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
