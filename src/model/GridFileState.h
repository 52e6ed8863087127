#pragma once

/// What has become of a grid file that was to be read.
enum class GridFileState {
  Whole,        ///< the grid holds all of it
  Damaged,      ///< the grid holds it but for records, heights or lights that could not be read
  Invalid,      ///< its format is not that of a grid file; the grid is a new one with the constraints read by then
  OutOfMemory,  ///< memory ran out while it was read; the grid is the same as for Invalid
  NotOpened,    ///< it could not be opened; the grid is as it was
  NoGridFile,   ///< it does not begin with a usable rectangle; the grid is as it was
  TooLarge,     ///< there is not enough memory for it, or it is too short for what it asks; the grid is as it was
};

/// Whether the grid holds the model of the file.
constexpr bool IsRead(GridFileState state) { return state == GridFileState::Whole || state == GridFileState::Damaged; }
/// Whether the grid is another than before.
constexpr bool IsReplaced(GridFileState state) {
  return IsRead(state) || state == GridFileState::Invalid || state == GridFileState::OutOfMemory;
}
