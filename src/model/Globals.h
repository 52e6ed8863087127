#pragma once

/// The few variables that the whole process shares.

inline constexpr int kDefaultBaseLevel = 5;
inline constexpr int kDefaultMaxLevel = 7;

/// Base and maximum resolution level of new grids; a loaded file may change them. Maximum levels from 1 to 10 are
/// supported.
inline int g_iBaseLevel = kDefaultBaseLevel;
inline int g_iMaxLevel = kDefaultMaxLevel;
/// 1 while the high-resolution grid is the current one.
inline int g_bHighRes = 0;
/// Number of registered solver ticks, 0 or 1.
inline int g_nSolverTimers = 0;
/// While 0, the solver lets the program process events between its steps.
inline int g_bNoEventPolling = 1;
/// Zoom of the image view: the share of the picture's extent that it shows, so that values below 1 magnify.
inline double g_fZoom = 1.0;
/// City-block distance, in model units at zoom 1, within which a click takes hold of a constraint.
inline double g_fPickTolerance = 1.0;
/// The same at the present zoom.
inline double PickReach() { return g_fZoom * g_fPickTolerance; }
