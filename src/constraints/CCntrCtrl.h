#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <iterator>
#include <list>

#include "base/SameBits.h"
#include "constraints/CPtCstr.h"

class CLattice;
class CPtCstrList;

/// What a curve does to the surface: the bits of its type word, one of which is set. Several make a mask, and a file
/// may hold any number.
enum class CurveType : std::uint32_t {
  kNone = 0,
  kPosition = 1,  ///< position discontinuity: the surface tears along it
  kNormal = 2,    ///< normal discontinuity: the surface creases along it
  kFairness = 4,  ///< the surface is smoothed along it
  kAll = 7,
};

constexpr CurveType operator|(CurveType a, CurveType b) {
  return static_cast<CurveType>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
constexpr CurveType operator&(CurveType a, CurveType b) {
  return static_cast<CurveType>(static_cast<std::uint32_t>(a) & static_cast<std::uint32_t>(b));
}

/// Names a curve for the length of the run, whatever is added, deleted or moved meanwhile.
enum class CurveId : std::uint64_t { kNone = 0 };

/// Option bits of a curve.
namespace CurveOption {
inline constexpr std::uint32_t kLeftAutoBump = 1;
inline constexpr std::uint32_t kRightAutoBump = 2;
}  // namespace CurveOption

/// The sides of a curve as one travels along it in drawing order.
enum class CurveSide { Left = 0, Right = 1 };

/// A vector in the plane of the picture, model units.
struct COffset {
  double m_fX = 0.0;
  double m_fY = 0.0;
  /// Whether the parallel passes by the node itself.
  bool IsZero() const { return m_fX == 0.0 && m_fY == 0.0; }
};

/// Where the parallel of a curve on one side of it passes by a node: at A; on the outer side of a bend by way of B (the
/// end of the incoming segment's parallel), A and C (the start of the outgoing one's).
struct CNodeOffsets {
  COffset m_A;
  COffset m_B;  ///< zero where the node has none
  COffset m_C;  ///< zero where the node has none
};

/// The four weights of a node.
struct CNodeWeights {
  double m_fLeftCurvature = 0.0;
  double m_fRightCurvature = 0.0;
  double m_fLeftTorsion = 0.0;
  double m_fRightTorsion = 0.0;
  /// To the last bit.
  bool operator==(const CNodeWeights& other) const {
    return SameBits(m_fLeftCurvature, other.m_fLeftCurvature) && SameBits(m_fRightCurvature, other.m_fRightCurvature) &&
           SameBits(m_fLeftTorsion, other.m_fLeftTorsion) && SameBits(m_fRightTorsion, other.m_fRightTorsion);
  }
};

/// One node of a curve.
struct CCntrNode : CPtCstr {
  CNodeWeights m_Weights;
  std::array<CNodeOffsets, 2> m_aOffsets{};  ///< by side

  /// Where the parallel on that side passes by.
  const CNodeOffsets& Offsets(CurveSide side) const { return m_aOffsets[static_cast<std::size_t>(side)]; }
  /// Leaves aside what CPtCstr leaves aside, and the offsets, which follow from the places.
  bool operator==(const CCntrNode& other) const { return CPtCstr::operator==(other) && m_Weights == other.m_Weights; }
};

/// The row of normal constraints that a curve may generate along one side of it.
struct CAutoBump {
  double m_fDistance = 5.0;     ///< between two of them along the path, model units
  double m_fOrientation = 0.0;  ///< tilt in degrees, positive uphill to the right, kept in -80..80
  /// To the last bit.
  bool operator==(const CAutoBump& other) const {
    return SameBits(m_fDistance, other.m_fDistance) && SameBits(m_fOrientation, other.m_fOrientation);
  }
};

/// A curve constraint (contour): a polyline over the picture, open or closed.
///
/// Addresses of nodes stay valid until the node is deleted. Creating one writes a console line, copying one does not.
class CCntrCtrl {
 public:
  using CNodes = std::list<CCntrNode>;
  static constexpr double kMaxOrientation = 80.0;  ///< degrees

  CCntrCtrl();
  /// Whether both are the same to the user, their states aside.
  bool operator==(const CCntrCtrl& other) const;

  /// A new one for each curve that is created.
  CurveId Id() const { return m_Id; }
  /// Nodes in drawing order.
  CNodes& Nodes() { return m_aNodes; }
  const CNodes& Nodes() const { return m_aNodes; }
  /// Whether the last node connects back to the first.
  bool IsClosed() const { return m_bClosed; }
  void SetClosed(bool closed) { m_bClosed = closed; }
  CurveType Type() const { return m_Type; }
  void SetType(CurveType type) { m_Type = type; }
  bool HasType(CurveType mask) const { return (m_Type & mask) != CurveType::kNone; }
  /// PtCstrState bits: a node of the curve is under the cursor, the curve is selected.
  bool HasState(std::uint32_t mask) const { return (m_uState & mask) != 0; }
  void SetState(std::uint32_t mask, bool on) { m_uState = on ? m_uState | mask : m_uState & ~mask; }
  std::uint32_t Options() const { return m_uOptions; }
  bool HasOption(std::uint32_t mask) const { return (m_uOptions & mask) != 0; }
  void SetOption(std::uint32_t mask, bool on) { m_uOptions = on ? m_uOptions | mask : m_uOptions & ~mask; }
  const CAutoBump& AutoBump(CurveSide side) const { return m_aAutoBumps[static_cast<std::size_t>(side)]; }
  void SetDistance(CurveSide side, double distance);
  /// Held to -kMaxOrientation..kMaxOrientation.
  void SetOrientation(CurveSide side, double degrees);
  /// Writes the four weights into every node.
  void SetAllWeights(double leftCurvature, double leftTorsion, double rightCurvature, double rightTorsion);

  /// The first node within `reach` of (x, y) (see CPtCstr::IsWithinReach); null if there is none.
  const CCntrNode* FindNode(double x, double y, double reach) const;
  /// The number of a node of this curve in drawing order, from 0.
  std::size_t NumberOf(const CCntrNode& node) const;
  /// Calls `visit(a, b)` for each segment, in drawing order, that from the last node to the first of a closed curve
  /// included. Nothing for fewer than two nodes.
  template <typename Visit>
  void ForEachSegment(Visit&& visit) const {
    if (m_aNodes.size() < 2) return;
    for (auto a = m_aNodes.begin(), b = std::next(a); b != m_aNodes.end(); ++a, ++b) visit(*a, *b);
    if (m_bClosed) visit(m_aNodes.back(), m_aNodes.front());
  }

  /// Recomputes the offsets of all nodes for parallels `length` (model units) away. A curve of two nodes becomes open;
  /// one of a single node is refused with a console line and loses its slopes.
  void UpdateNormals(double length);
  /// More constraints than this, over all curves, would take more memory and time than anyone would put up with.
  static constexpr double kMostGenerated = 200'000;
  /// About how many constraints `AddAutoBumpConstraints` would append. The offsets must be up to date.
  double GeneratedCount() const;
  /// Appends the generated normal constraints of the sides that have them to `target`, left side first. `refine`, if
  /// given, is called with the place (model units) of each. The offsets must be up to date.
  void AddAutoBumpConstraints(CPtCstrList& target, const std::function<void(double x, double y)>& refine = {}) const;

  /// Deletes the nodes strictly between `a` and `b`, going forward and, on a closed curve, past the end. Stops with a
  /// console line at the end of an open curve and when it comes back to `a`; what is deleted by then stays deleted.
  void RemoveBetween(CNodes::iterator a, CNodes::iterator b);
  /// Removes nodes that lie within half a lattice step of the line which then replaces them. For traced curves; at
  /// worst quadratic in the nodes of one straight stretch.
  void Simplify(const CLattice& lattice);

  /// The text form, the last line without its end. Offsets and state are not part of it. Places and heights are kept to
  /// within `tolerance`.
  void Write(std::ostream& out, double tolerance) const;
  /// Replaces everything but the state by what the stream holds, as far as it can be read. The offsets are those of no
  /// curve until they are updated.
  void Read(std::istream& in);

 private:
  void AddAutoBumpConstraintsLeft(CPtCstrList& target, const std::function<void(double, double)>& refine) const;
  void AddAutoBumpConstraintsRight(CPtCstrList& target, const std::function<void(double, double)>& refine) const;
  void AddAutoBumpSide(CurveSide side, CPtCstrList& target, const std::function<void(double, double)>& refine) const;

  CurveId m_Id;
  bool m_bClosed = false;
  CNodes m_aNodes;
  CurveType m_Type = CurveType::kNone;
  std::uint32_t m_uState = 0;
  std::uint32_t m_uOptions = 0;
  std::array<CAutoBump, 2> m_aAutoBumps;  ///< by side
};
