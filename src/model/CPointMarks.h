#pragma once

#include <cstdint>

class CGridRun;
class CSurface;

/// Marks on the points of a surface that are there to be drawn and that nothing is computed from: what the freeze brush
/// has painted, and the ends of an edge that an interpolation was traced to.
class CPointMarks {
 public:
  /// Reach of the freeze brush at zoom 1, model units; it grows with the zoom.
  static constexpr double kFreezeRadius = 4.0;

  /// Both must outlive the marks.
  CPointMarks(CSurface& surface, CGridRun& run) : m_Surface(surface), m_Run(run) {}

  /// Freezes, or with `freeze` false sets free, the points in use within `radius` of (x, y).
  void Paint(double x, double y, double radius, bool freeze);
  /// Grows whenever the brush has painted; what is drawn of it is remade only then.
  std::uint64_t FreezeRevision() const { return m_uFreezeRevision; }

  /// Highlights the ends of the border sub-edge that the height at (x, y) hangs on, no others, and has the host show
  /// what the interpolation is made of. False outside the model.
  bool TraceInterpolation(double x, double y);

 private:
  CSurface& m_Surface;
  CGridRun& m_Run;
  std::uint64_t m_uFreezeRevision = 0;
};
