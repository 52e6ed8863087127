#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CCutTriangulation.h"
#include "mesh/CMeshPlane.h"

class CTearCutter;
class CTearPatch;

/// Leads open ends of tears on to the tear that they all but touch.
///
/// An end half a cell from another tear cuts leaf edges between the two, which no curve crosses: the solver lets the
/// surface part there, and triangles across would be a curtain. Where such an edge parts two heights that the solver
/// has, the nearest open end is led through it to the other cut on the shortest way. A way through a leaf edge that is
/// not cut is none; an edge that no end can be led through stays closed.
class CEndLeader {
 public:
  /// `cutter` must be at work on the triangles of `patch`.
  CEndLeader(CTearPatch& patch, CTearCutter& cutter) : m_Patch(patch), m_Cutter(cutter) {}

  /// Linear in the patch for each end that is led on. False, and not all are, where `steps` do not go on.
  bool LeadAll(const CExportSteps& steps = {});

 private:
  using CLine = std::array<CMeshPlace, 2>;
  struct CWay {
    std::uint32_t m_uEnd = 0;
    CMeshPlace m_To;
    double m_fLength = 0.0;
  };

  void FindLines();
  std::vector<CLine> PartedEdges(const CExportSteps& steps) const;
  bool Lead(const CLine& parted);
  std::optional<CWay> WayFrom(std::uint32_t end, const CLine& parted) const;
  bool IsOpen(const CMeshPlace& from, const CMeshPlace& to) const;

  CTearPatch& m_Patch;
  CTearCutter& m_Cutter;
  std::vector<CLine> m_aCuts;           ///< cut sides
  std::vector<CLine> m_aJoined;         ///< leaf edges near a tear that are not cut
  std::vector<std::uint32_t> m_auEnds;  ///< vertices at which a cut ends inside the surface
};
