#pragma once

/// What relievo-batch ends with.
namespace ExitStatus {
inline constexpr int kDone = 0;
inline constexpr int kUsage = 1;
inline constexpr int kInput = 2;         ///< an input is missing or invalid
inline constexpr int kNotConverged = 3;  ///< within the bound or at all; the outputs are written all the same
inline constexpr int kOutput = 4;        ///< an output could not be written; comes before the others from 3 on
inline constexpr int kDamaged = 5;       ///< the model was read in part and the outputs hold that; comes before 6 and 3
inline constexpr int kUnsettled = 6;     ///< with --strict: contradictions or floating regions; comes before 3
}  // namespace ExitStatus
