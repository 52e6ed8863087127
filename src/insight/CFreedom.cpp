#include "insight/CFreedom.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "insight/CGroups.h"
#include "solver/CConstraintRows.h"
#include "solver/CEnergyTerms.h"

namespace {

// See the class. Larger, and tilts that heights close together fix would count as free; smaller, and what interpolation
// leaves between a stencil and the place it is for would fix what is free.
constexpr double kFree = 1e-7;
// What a form makes of the planes of a piece is rounding below this share of what it would without cancellation:
// stencils reproduce planes to some 1e-10. The slope over the smallest cell makes 1e-3 of the largest piece.
constexpr double kCancelled = 1e-8;
// A piece moves with a direction that gives it more than this share of the length, and a direction is 0 below it. The
// vectors are exact to some 1e-13.
constexpr double kMoves = 1e-6;
// What moves two regions, or a region and a point that tears have left over, by less than this leaves them apart.
constexpr double kJoins = 1e-9;

// The rows of the given pieces, one below the other.
CSmallMatrix RowsOf(const CSmallMatrix& matrix, std::span<const std::size_t> pieces, std::size_t each) {
  CSmallMatrix rows(each * pieces.size(), matrix.Columns());
  for (std::size_t j = 0; j < matrix.Columns(); ++j) {
    for (std::size_t k = 0; k < pieces.size(); ++k)
      std::ranges::copy(matrix.Column(j).subspan(each * pieces[k], each), rows.Column(j).subspan(each * k).begin());
  }
  return rows;
}

// A column for each of those vectors whose image is longer than `least`: what `matrix` makes of it, over that length.
CSmallMatrix ImagesOf(const CRightSingular& vectors, double least, const CSmallMatrix& matrix) {
  std::vector<std::size_t> chosen;
  for (std::size_t k = 0; k < vectors.m_afLengths.size(); ++k) {
    if (vectors.m_afLengths[k] > least) chosen.push_back(k);
  }
  CSmallMatrix images(matrix.Rows(), chosen.size());
  for (std::size_t k = 0; k < chosen.size(); ++k) {
    matrix.Times(vectors.m_Vectors.Column(chosen[k]), images.Column(k));
    for (double& value : images.Column(k)) value /= vectors.m_afLengths[chosen[k]];
  }
  return images;
}

double LengthOf(std::span<const double> values) {
  return std::sqrt(std::transform_reduce(values.begin(), values.end(), values.begin(), 0.0));
}

}  // namespace

// Points of a piece differ in both coordinates, in one, or it is a single point; a scale above 0 serves all.
double CFreedom::ScaleOf(std::uint32_t piece) const {
  const CExtent& box = m_Pieces[piece].m_Box;
  const double side = std::max(box.x1 - box.x0, box.y1 - box.y0);
  return side > 0.0 ? side / 2 : 1.0;
}

template <typename Columns>
void CFreedom::AddEquation(const Columns& points, std::span<const double> coefs, double magnitude) {
  std::vector<CPart> parts;
  for (std::size_t e = 0; e < coefs.size(); ++e) {
    const std::uint32_t piece = m_Pieces.PieceAt(points[e]);
    auto part = std::ranges::find(parts, piece, &CPart::m_uPiece);
    if (part == parts.end()) part = parts.insert(part, {piece, {}});
    const CPlanePoint middle = m_Pieces[piece].Middle();
    const CPlanePoint& place = m_Pieces.PlaceOf(points[e]);
    const double scale = ScaleOf(piece);
    const std::array<double, kOfPlane> plane{1.0, (place.x - middle.x) / scale, (place.y - middle.y) / scale};
    for (std::size_t k = 0; k < kOfPlane; ++k) part->m_afOf[k] += coefs[e] * plane[k];
  }
  double square = 0.0;
  for (CPart& part : parts) {
    for (double& of : part.m_afOf) {
      if (!(std::abs(of) > kCancelled * magnitude)) of = 0.0;
      square += of * of;
    }
  }
  if (!(square > 0.0) || !std::isfinite(square)) return;
  for (CPart& part : parts) {
    if (part.m_afOf == std::array<double, kOfPlane>{}) continue;
    for (double& of : part.m_afOf) of /= std::sqrt(square);
    m_aParts.push_back(part);
  }
  m_auEquationStart.push_back(m_aParts.size());
}

std::span<const CFreedom::CPart> CFreedom::PartsOf(std::size_t equation) const {
  const std::size_t first = m_auEquationStart[equation];
  return std::span(m_aParts).subspan(first, m_auEquationStart[equation + 1] - first);
}

// The pieces that are not settled, in groups that equations join, each with the equations on it.
std::vector<CFreedom::CSystem> CFreedom::Systems() const {
  CGroups groups(m_Pieces.Count());
  const auto forEachLoose = [this](std::size_t equation, const auto& visit) {
    for (const CPart& part : PartsOf(equation)) {
      if (!m_abSettled[part.m_uPiece]) visit(part.m_uPiece);
    }
  };
  const std::size_t equations = m_auEquationStart.size() - 1;
  std::vector<std::int64_t> first(equations, -1);
  for (std::size_t k = 0; k < equations; ++k) {
    forEachLoose(k, [&](std::uint32_t piece) {
      if (first[k] < 0) first[k] = piece;
      groups.Join(static_cast<std::uint32_t>(first[k]), piece);
    });
  }
  std::vector<CSystem> systems(m_Pieces.Count());
  for (std::uint32_t piece = 0; piece < m_Pieces.Count(); ++piece) {
    if (!m_abSettled[piece]) systems[groups.Of(piece)].m_auPieces.push_back(piece);
  }
  for (std::size_t k = 0; k < equations; ++k) {
    if (first[k] >= 0) systems[groups.Of(static_cast<std::uint32_t>(first[k]))].m_auEquations.push_back(k);
  }
  // Points that tears have left over, alone or together, are nobody's concern.
  std::erase_if(systems, [this](const CSystem& system) {
    return std::ranges::none_of(system.m_auPieces, [this](std::uint32_t p) { return m_Pieces[p].IsDrawn(); });
  });
  return systems;
}

CSmallMatrix CFreedom::TriangleOf(const CSystem& system) const {
  CRowTriangle triangle(kOfPlane * system.m_auPieces.size());
  std::vector<double> row(kOfPlane * system.m_auPieces.size());
  const auto partOf = [&](std::uint32_t piece) {
    const auto at = std::ranges::lower_bound(system.m_auPieces, piece) - system.m_auPieces.begin();
    return std::span(row).subspan(kOfPlane * static_cast<std::size_t>(at), kOfPlane);
  };
  for (const std::size_t equation : system.m_auEquations) {
    std::ranges::fill(row, 0.0);
    for (const CPart& part : PartsOf(equation)) {
      if (!m_abSettled[part.m_uPiece]) std::ranges::copy(part.m_afOf, partOf(part.m_uPiece).begin());
    }
    triangle.Add(row);
  }
  // Slopes that the points of a piece cannot show are no directions.
  for (const std::uint32_t piece : system.m_auPieces) {
    const CExtent& box = m_Pieces[piece].m_Box;
    const std::array<bool, kOfPlane> shown{true, box.x1 > box.x0, box.y1 > box.y0};
    for (std::size_t k = 0; k < kOfPlane; ++k) {
      std::ranges::fill(row, 0.0);
      if (!shown[k]) partOf(piece)[k] = 1.0;
      triangle.Add(row);
    }
  }
  return triangle.Triangle();
}

// A column per direction, with a height and two slopes for each piece.
CSmallMatrix CFreedom::NullVectors(const CSystem& system) const {
  const CRightSingular found = FindRightSingular(TriangleOf(system));
  std::vector<std::size_t> null;
  for (std::size_t k = 0; k < found.m_afLengths.size(); ++k) {
    if (found.IsNull(k, kFree)) null.push_back(k);
  }
  CSmallMatrix directions(found.m_afLengths.size(), null.size());
  for (std::size_t k = 0; k < null.size(); ++k)
    std::ranges::copy(found.m_Vectors.Column(null[k]), directions.Column(k).begin());
  return directions;
}

// What settled pieces have in common with others settles nothing between those.
void CFreedom::DropSettled() {
  std::vector<bool> settled = m_abSettled;
  for (const CSystem& system : Systems()) {
    const CSmallMatrix directions = NullVectors(system);
    for (std::size_t k = 0; k < system.m_auPieces.size(); ++k) {
      double square = 0.0;
      for (std::size_t d = 0; d < directions.Columns(); ++d) {
        for (std::size_t i = 0; i < kOfPlane; ++i) square += std::pow(directions.At(kOfPlane * k + i, d), 2);
      }
      settled[system.m_auPieces[k]] = std::sqrt(square) < kMoves;
    }
  }
  m_abSettled = std::move(settled);
}

// The directions in which regions move, a column each as null vectors are: those are perpendicular and of length 1 over
// the regions, and move what tears have left over as little as that allows. What moves only such points is none.
CSmallMatrix CFreedom::VisibleDirections(const CSystem& system) const {
  const CSmallMatrix all = NullVectors(system);
  return ImagesOf(FindRightSingular(RowsOf(all, RegionsOf(system), kOfPlane)), kMoves, all);
}

// Places in the system.
std::vector<std::size_t> CFreedom::RegionsOf(const CSystem& system) const {
  std::vector<std::size_t> regions;
  for (std::size_t k = 0; k < system.m_auPieces.size(); ++k) {
    if (m_Pieces[system.m_auPieces[k]].IsDrawn()) regions.push_back(k);
  }
  return regions;
}

// Of the visible directions those that move the given regions of the system, which no direction joins to others.
CFreeGroup CFreedom::GroupOf(const CSystem& system, std::span<const std::size_t> regions,
                             const CSmallMatrix& visible) const {
  // Their lengths over these regions are 1, and those of all others 0.
  const CSmallMatrix own = ImagesOf(FindRightSingular(RowsOf(visible, regions, kOfPlane)), 0.5, visible);
  std::vector<std::size_t> places(regions.begin(), regions.end());
  for (std::size_t k = 0; k < system.m_auPieces.size(); ++k) {
    const std::array piece{k};
    const CSmallMatrix rows = RowsOf(own, piece, kOfPlane);
    double most = 0.0;
    for (std::size_t d = 0; d < rows.Columns(); ++d) most = std::max(most, LengthOf(rows.Column(d)));
    if (!m_Pieces[system.m_auPieces[k]].IsDrawn() && most > kJoins) places.push_back(k);
  }
  CFreeGroup group;
  group.m_uRegions = regions.size();
  for (const std::size_t k : places) group.m_auPieces.push_back(system.m_auPieces[k]);
  for (std::size_t d = 0; d < own.Columns(); ++d) {
    for (const std::size_t k : places) {
      const std::uint32_t piece = system.m_auPieces[k];
      const double scale = ScaleOf(piece);
      group.m_aPlanes.push_back({m_Pieces[piece].Middle(), own.At(kOfPlane * k, d), own.At(kOfPlane * k + 1, d) / scale,
                                 own.At(kOfPlane * k + 2, d) / scale});
    }
  }
  group.m_bFollowsAnyPlane = FollowsAnyPlane(group);
  return group;
}

// Whether each plane over all of its regions is a sum of its directions.
bool CFreedom::FollowsAnyPlane(const CFreeGroup& group) const {
  const CPlanePoint origin = m_Pieces[group.m_auPieces.front()].Middle();
  const double unit = ScaleOf(group.m_auPieces.front());
  for (const CPlane& plane :
       {CPlane{origin, 1, 0, 0}, CPlane{origin, 0, 1 / unit, 0}, CPlane{origin, 0, 0, 1 / unit}}) {
    double square = 0.0;
    double reached = 0.0;
    for (std::size_t d = 0; d < group.DirectionCount(); ++d) {
      double product = 0.0;
      for (std::size_t k = 0; k < group.m_uRegions; ++k) {
        const CPlane& own = group.PlaneOf(d, k);
        const double scale = ScaleOf(group.m_auPieces[k]);
        product += own.m_fZ * plane.At(own.m_Place) + scale * scale * (own.m_fP * plane.m_fP + own.m_fQ * plane.m_fQ);
      }
      reached += product * product;
    }
    for (const std::uint32_t piece : group.Regions()) {
      const double scale = ScaleOf(piece);
      square += std::pow(plane.At(m_Pieces[piece].Middle()), 2) +
                scale * scale * (plane.m_fP * plane.m_fP + plane.m_fQ * plane.m_fQ);
    }
    if (reached < (1.0 - kMoves) * square) return false;
  }
  return true;
}

// Regions that a direction moves together are one group. What tears have left over between them joins nothing by
// itself: where it can give way, regions on either side of it move freely.
void CFreedom::AddGroups(const CSystem& system) {
  const std::vector<std::size_t> regions = RegionsOf(system);
  const CSmallMatrix visible = VisibleDirections(system);
  CGroups joined(regions.size());
  for (std::uint32_t a = 0; a < regions.size(); ++a) {
    for (std::uint32_t b = a + 1; b < regions.size(); ++b) {
      // How the nearest to a plane of the one that can be reached moves the other.
      double square = 0.0;
      for (std::size_t i = 0; i < kOfPlane; ++i) {
        for (std::size_t j = 0; j < kOfPlane; ++j) {
          double product = 0.0;
          for (std::size_t d = 0; d < visible.Columns(); ++d)
            product += visible.At(kOfPlane * regions[a] + i, d) * visible.At(kOfPlane * regions[b] + j, d);
          square += product * product;
        }
      }
      if (std::sqrt(square) > kJoins) joined.Join(a, b);
    }
  }
  std::vector<std::vector<std::size_t>> members(regions.size());
  for (std::uint32_t k = 0; k < regions.size(); ++k) members[joined.Of(k)].push_back(regions[k]);
  for (const std::vector<std::size_t>& together : members) {
    if (together.empty()) continue;
    CFreeGroup group = GroupOf(system, together, visible);
    if (!group.m_aPlanes.empty()) m_aGroups.push_back(std::move(group));
  }
}

void CFreedom::FindGroups() {
  m_aGroups.clear();
  for (const CSystem& system : Systems()) AddGroups(system);
  std::ranges::sort(m_aGroups, {}, [](const CFreeGroup& group) { return group.m_auPieces.front(); });
}

// What the directions of a group do to one of its pieces, as perpendicular ones.
std::vector<CPlane> CFreedom::FreePlanesOf(const CFreeGroup& group, std::size_t k) const {
  const std::uint32_t piece = group.m_auPieces[k];
  const double scale = ScaleOf(piece);
  CSmallMatrix shares(group.DirectionCount(), kOfPlane);
  for (std::size_t d = 0; d < group.DirectionCount(); ++d) {
    const CPlane& plane = group.PlaneOf(d, k);
    shares.At(d, 0) = plane.m_fZ;
    shares.At(d, 1) = plane.m_fP * scale;
    shares.At(d, 2) = plane.m_fQ * scale;
  }
  const CRightSingular own = FindRightSingular(shares);
  std::vector<CPlane> free;
  for (std::size_t d = 0; d < kOfPlane; ++d) {
    const std::span<const double> v = own.m_Vectors.Column(d);
    if (own.m_afLengths[d] > kMoves) free.push_back({m_Pieces[piece].Middle(), v[0], v[1] / scale, v[2] / scale});
  }
  return free;
}

void CFreedom::FindRegions() {
  m_aRegions.clear();
  for (std::uint32_t piece = 0; piece < m_Pieces.Count(); ++piece) {
    if (m_Pieces[piece].IsDrawn()) m_aRegions.push_back({piece, {}});
  }
  for (const CFreeGroup& group : m_aGroups) {
    for (std::size_t k = 0; k < group.m_uRegions; ++k)
      std::ranges::lower_bound(m_aRegions, group.m_auPieces[k], {}, &CRegion::m_uPiece)->m_aFree =
          FreePlanesOf(group, k);
  }
}

void CFreedom::Build(const CQuadTree& tree, const CPointOrder& order, const CConstraintRows& rows,
                     const CEnergyTerms& terms) {
  m_Pieces.Build(tree, order);
  m_auEquationStart.assign(1, 0);
  m_aParts.clear();
  for (std::size_t j = 0; j < rows.Count(); ++j) {
    double magnitude = 0.0;
    for (const double value : rows.Rows().Values(j)) magnitude += std::abs(value);
    AddEquation(rows.Rows().Columns(j), rows.Rows().Values(j), magnitude);
  }
  for (std::size_t t = 0; t < terms.Count(); ++t) AddEquation(terms.Unknowns(t), terms.Coefs(t), terms.Magnitude(t));
  m_abSettled.assign(m_Pieces.Count(), false);
  DropSettled();
  FindGroups();
  FindRegions();
}
