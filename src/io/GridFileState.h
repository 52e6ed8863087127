#pragma once

/// What has become of a grid file that was to be read.
enum class GridFileState {
  Whole,      ///< the grid holds all of it
  Damaged,    ///< the grid holds it but for records, heights or lights that could not be read
  Invalid,    ///< its format is not that of a grid file; the grid is a new one with the constraints read by then
  NotOpened,  ///< nothing was read and the grid is as it was
};
