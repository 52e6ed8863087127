#pragma once

/// Why the system has no row for a point constraint.
enum class Inactivity {
  None,      ///< it has all of its rows
  InTear,    ///< the place, or a probe beside it, lies in a triangle of a discontinuity
  OnBorder,  ///< a slope whose probes would lie outside
  Outside,
};

/// The reason as users read it; empty for None.
inline constexpr const char* InactivityText(Inactivity reason) {
  switch (reason) {
    case Inactivity::InTear:
      return "in a tear";
    case Inactivity::OnBorder:
      return "on the border";
    case Inactivity::Outside:
      return "outside";
    default:
      return "";
  }
}
