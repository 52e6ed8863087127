#include "exports/CleanFileMesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <span>
#include <utility>

#include "base/Memory.h"
#include "model/CGrid.h"

namespace {

using CTriangle = std::array<std::uint32_t, 3>;
using CPoint = std::array<float, 3>;

CCleanMesh CleanMeshOf(const CGrid& grid, const CCleanMeshOptions& options, const CExportSteps& steps) {
  CSurfaceMesh mesh;
  mesh.Build(grid.Surface().Tree());
  return {grid.Surface().Tree(), std::move(mesh), grid.Constraints().Curves(), options, steps};
}

std::vector<CTriangle> TrianglesOf(std::span<const std::uint32_t> corners) {
  std::vector<CTriangle> triangles;
  ReserveLarge(triangles, corners.size() / 3);
  for (std::size_t c = 0; c + 3 <= corners.size(); c += 3)
    triangles.push_back({corners[c], corners[c + 1], corners[c + 2]});
  return triangles;
}

CFileMesh EmptyMesh(const CGrid& grid, const CCleanMeshOptions& options) {
  const CExtent& e = grid.Surface().Lattice().Extent();
  CFileMesh mesh;
  mesh.m_afMiddle = {0.5 * (e.x0 + e.x1), 0.5 * (e.y0 + e.y1)};
  mesh.m_fScale = options.m_fScale;
  return mesh;
}

Vector3 At(const CFileMesh& mesh, std::uint32_t v) {
  const CPoint& p = mesh.m_aPositions[v];
  return {p[0], p[1], p[2]};
}

// Twice the area of a triangle times its normal.
inline Vector3 AreaOf(const CFileMesh& mesh, const CTriangle& triangle) {
  const Vector3 first = At(mesh, triangle[0]);
  return Cross(At(mesh, triangle[1]) - first, At(mesh, triangle[2]) - first);
}

CPoint Written(const Vector3& normal) {
  return {static_cast<float>(normal.x), static_cast<float>(normal.y), static_cast<float>(normal.z)};
}

// Upwards where there is no area.
CPoint DirectionOf(const Vector3& area) {
  const double length = Length(area);
  return length > 0 ? Written((1.0 / length) * area) : CPoint{0, 0, 1};
}

/// The same of many, step by step, so that the processor takes more than one root or quotient at a time.
class CDirections {
 public:
  static constexpr std::size_t kAtOnce = 64;
  using CAreas = std::span<const Vector3, kAtOnce>;
  using CNormals = std::span<CPoint, kAtOnce>;

  void Find(CAreas areas, CNormals normals) {
    for (std::size_t k = 0; k < kAtOnce; ++k)
      m_afLength[k] = areas[k].x * areas[k].x + areas[k].y * areas[k].y + areas[k].z * areas[k].z;
    for (std::size_t k = 0; k < kAtOnce; ++k) m_afLength[k] = std::sqrt(m_afLength[k]);
    for (std::size_t k = 0; k < kAtOnce; ++k) m_afShare[k] = 1.0 / m_afLength[k];
    for (std::size_t k = 0; k < kAtOnce; ++k)
      normals[k] = m_afLength[k] > 0 ? Written(m_afShare[k] * areas[k]) : CPoint{0, 0, 1};
  }

 private:
  std::array<double, kAtOnce> m_afLength{};
  std::array<double, kAtOnce> m_afShare{};
};

void AddArea(const CFileMesh& mesh, const CTriangle& triangle, std::span<Vector3> sums) {
  const Vector3 area = AreaOf(mesh, triangle);
  for (const std::uint32_t v : triangle) sums[v] += area;
}

// Whether the four triangles from there on go once around what they have in common.
bool IsSquare(std::span<const CTriangle> fan) {
  return fan.size() == 4 && fan[0][1] == fan[1][0] && fan[1][1] == fan[2][0] && fan[2][1] == fan[3][0] &&
         fan[3][1] == fan[0][0];
}

// The same for those of a leaf: nearly all have four triangles, whose corners then are looked up once. The sum at the
// centre is whole. Without a loop, so that all of it stays in the processor.
Vector3 AddSquare(const CFileMesh& mesh, std::span<const CTriangle> fan, std::span<Vector3> sums) {
  const Vector3 a = At(mesh, fan[0][0]);
  const Vector3 b = At(mesh, fan[1][0]);
  const Vector3 c = At(mesh, fan[2][0]);
  const Vector3 d = At(mesh, fan[3][0]);
  const Vector3 centre = At(mesh, fan[0][2]);
  const Vector3 bottom = Cross(b - a, centre - a);
  const Vector3 right = Cross(c - b, centre - b);
  const Vector3 top = Cross(d - c, centre - c);
  const Vector3 left = Cross(a - d, centre - d);
  // In the order of the triangles.
  const auto add = [&sums](std::uint32_t v, const Vector3& first, const Vector3& second) {
    Vector3& sum = sums[v];
    sum = {sum.x + first.x + second.x, sum.y + first.y + second.y, sum.z + first.z + second.z};
  };
  add(fan[0][0], bottom, left);
  add(fan[1][0], bottom, right);
  add(fan[2][0], right, top);
  add(fan[3][0], top, left);
  return Vector3{} + bottom + right + top + left;
}

Vector3 AddFan(const CFileMesh& mesh, std::span<const CTriangle> fan, std::span<Vector3> sums) {
  if (IsSquare(fan)) return AddSquare(mesh, fan, sums);
  Vector3 whole;
  for (const CTriangle& triangle : fan) {
    const Vector3 area = AreaOf(mesh, triangle);
    sums[triangle[0]] += area;
    sums[triangle[1]] += area;
    whole += area;
  }
  return whole;
}

/// Normals at the vertices of a mesh: those of the triangles around each, the larger ones counting more. Upwards where
/// there is no triangle.
class CSmoothNormals {
 public:
  /// The first triangles are those of `fans`, and the first vertices `corners`, as CCleanMesh has them.
  CSmoothNormals(CFileMesh& mesh, std::size_t corners, std::size_t fans)
      : m_Mesh(mesh), m_uCorners(corners), m_uFans(fans) {
    // Only what is not whole leaves, if anything is, adds to sums at other vertices than corners.
    const std::size_t sums = fans < mesh.m_aTriangles.size() ? mesh.m_aPositions.size() : corners;
    ReserveLarge(m_aSums, sums);
    m_aSums.resize(sums);
  }

  /// False, and not all, where `steps` do not go on.
  bool Add(const CExportSteps& steps) {
    constexpr double kSummed = 0.8;
    std::vector<CPoint>& normals = m_Mesh.m_aNormals;
    ReserveLarge(normals, m_Mesh.m_aPositions.size() + m_Mesh.m_aPositions.size() / 8);
    normals.resize(m_uCorners);
    const auto add = [this](std::size_t begin, std::size_t end) { AddTriangles(begin, end); };
    if (!steps.Part(0, kSummed).ForBlocks(m_Mesh.m_aTriangles.size(), add)) return false;
    FinishCentres();
    normals.resize(m_Mesh.m_aPositions.size());
    return steps.Part(kSummed, 1).ForBlocks(m_aSums.size(), [this](std::size_t begin, std::size_t end) {
      FinishSums(begin, end);
    });
  }

 private:
  // A block may end within a fan.
  void AddTriangles(std::size_t begin, std::size_t end) {
    const std::span<const CTriangle> triangles = m_Mesh.m_aTriangles;
    const std::span<Vector3> sums = m_aSums;
    std::size_t t = std::max(begin, m_uNext);
    for (; t < std::min(end, m_uFans);) {
      const std::uint32_t centre = triangles[t][2];
      std::size_t behind = t + 1;
      while (behind < m_uFans && triangles[behind][2] == centre) ++behind;
      // Centres between come later.
      if (centre != m_Mesh.m_aNormals.size() + m_uWaiting) {
        FinishCentres();
        m_Mesh.m_aNormals.resize(centre);
      }
      m_aWaiting[m_uWaiting++] = AddFan(m_Mesh, triangles.subspan(t, behind - t), sums);
      if (m_uWaiting == m_aWaiting.size()) FinishCentres();
      t = behind;
    }
    m_uNext = t;
    for (; t < end; ++t) AddArea(m_Mesh, triangles[t], sums);
    m_uNext = t;
  }

  // The normals of the centres that wait, which are the next ones.
  void FinishCentres() {
    std::array<CPoint, CDirections::kAtOnce> found{};
    m_Directions.Find(m_aWaiting, found);
    m_Mesh.m_aNormals.insert(m_Mesh.m_aNormals.end(), found.begin(),
                             found.begin() + static_cast<std::ptrdiff_t>(m_uWaiting));
    m_uWaiting = 0;
  }

  void FinishSums(std::size_t begin, std::size_t end) {
    std::vector<CPoint>& normals = m_Mesh.m_aNormals;
    const std::size_t corners = std::min(end, m_uCorners);
    for (; begin + CDirections::kAtOnce <= corners; begin += CDirections::kAtOnce) {
      m_Directions.Find(CDirections::CAreas(&m_aSums[begin], CDirections::kAtOnce),
                        CDirections::CNormals(&normals[begin], CDirections::kAtOnce));
    }
    for (; begin < end; ++begin) {
      if (begin < m_uCorners || normals[begin] == kNotYet) normals[begin] = DirectionOf(m_aSums[begin]);
    }
  }

  static constexpr CPoint kNotYet{};

  CFileMesh& m_Mesh;
  std::size_t m_uCorners;
  std::size_t m_uFans;
  std::size_t m_uNext = 0;  ///< triangle
  std::vector<Vector3> m_aSums;
  std::array<Vector3, CDirections::kAtOnce> m_aWaiting{};  ///< sums at centres whose normals come next
  std::size_t m_uWaiting = 0;
  CDirections m_Directions;
};

// Each with corners of its own, so that the edge between surface and wall stays sharp.
void AddWalls(std::span<const std::uint32_t> walls, CFileMesh& mesh) {
  for (const CTriangle& wall : TrianglesOf(walls)) {
    const Vector3 area = AreaOf(mesh, wall);
    const CPoint normal = DirectionOf(area);
    const auto first = static_cast<std::uint32_t>(mesh.m_aPositions.size());
    for (const std::uint32_t v : wall) {
      const CPoint position = mesh.m_aPositions[v];
      const std::array<float, 2> place = mesh.m_aPicturePlaces[v];
      mesh.m_aPositions.push_back(position);
      mesh.m_aPicturePlaces.push_back(place);
      mesh.m_aNormals.push_back(normal);
    }
    mesh.m_aTriangles.push_back({first, first + 1, first + 2});
  }
}

/// Adds the sides and the base of a solid to its upper surface.
class CSolidCloser {
 public:
  CSolidCloser(CFileMesh& mesh, std::span<const CCleanMesh::CFoot> feet, double base) : m_Mesh(mesh) {
    for (const auto& [vertex, foot] : feet) m_Feet[vertex] = foot;
    float low = std::numeric_limits<float>::max();
    for (const CPoint& p : mesh.m_aPositions) {
      low = std::min(low, p[2]);
      m_fX = std::max(m_fX, p[0]);
      m_fY = std::max(m_fY, p[1]);
    }
    m_fBase = static_cast<float>(low - base);
  }

  /// Closes the sides of the first triangles that lie on the border: those of the surface.
  void Close(std::size_t surface) {
    std::vector<bool> onBorder;
    onBorder.reserve(m_Mesh.m_aPositions.size());
    for (std::uint32_t v = 0; v < m_Mesh.m_aPositions.size(); ++v) onBorder.push_back(IsOnBorder(v, v));
    for (const CTriangle& triangle : std::span(m_Mesh.m_aTriangles).first(surface)) {
      if (std::ranges::none_of(triangle, [&](std::uint32_t v) { return onBorder[v]; })) continue;
      for (std::size_t k = 0; k < triangle.size(); ++k) {
        if (IsOnBorder(triangle[k], triangle[(k + 1) % 3])) m_aBorder.emplace_back(triangle[k], triangle[(k + 1) % 3]);
        // A piece between two tears may meet the border in one point.
        if (onBorder[triangle[k]]) m_HeightsAt[PlaceOf(triangle[k])].push_back(HeightOf(triangle[k]));
      }
    }
    const std::uint32_t middle = AddVertex({0, 0, m_fBase});
    for (const auto& [from, to] : m_aBorder) AddSide(from, to, middle);
  }

 private:
  using CPlace = std::pair<float, float>;

  float HeightOf(std::uint32_t v) const { return m_Mesh.m_aPositions[v][2]; }
  CPlace PlaceOf(std::uint32_t v) const { return {m_Mesh.m_aPositions[v][0], m_Mesh.m_aPositions[v][1]}; }
  // The middle is 0, so that opposite sides have opposite coordinates.
  bool IsOnBorder(std::uint32_t a, std::uint32_t b) const {
    const auto [ax, ay] = PlaceOf(a);
    const auto [bx, by] = PlaceOf(b);
    return (ax == bx && std::abs(ax) == m_fX) || (ay == by && std::abs(ay) == m_fY);
  }
  std::uint32_t AddVertex(const CPoint& position) {
    m_Mesh.m_aPositions.push_back(position);
    return static_cast<std::uint32_t>(m_Mesh.m_aPositions.size() - 1);
  }

  // From a vertex down to the base, by way of all heights that its place has below it: a tear that ends there has walls
  // between them. One that has been moved comes back to its place on the way.
  std::vector<std::uint32_t> Chain(std::uint32_t v) {
    CPoint top = m_Mesh.m_aPositions[v];
    std::vector<std::uint32_t> chain{v};
    if (const auto foot = m_Feet.find(v); foot != m_Feet.end()) {
      top = foot->second;
      chain.push_back(AddVertex(top));
    }
    std::vector<float> heights = m_HeightsAt[{top[0], top[1]}];
    std::ranges::sort(heights, std::greater());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
    for (const float z : heights) {
      if (z < top[2]) chain.push_back(AddVertex({top[0], top[1], z}));
    }
    chain.push_back(AddVertex({top[0], top[1], m_fBase}));
    return chain;
  }

  // The wall below a side of the surface that runs along the border with the solid to its left, and its part of the
  // base.
  void AddSide(std::uint32_t from, std::uint32_t to, std::uint32_t middle) {
    const std::vector<std::uint32_t> left = Chain(from);
    const std::vector<std::uint32_t> right = Chain(to);
    std::size_t i = 0;
    std::size_t j = 0;
    while (i + 1 < left.size() || j + 1 < right.size()) {
      const bool leftNext =
          j + 1 == right.size() || (i + 1 < left.size() && HeightOf(left[i + 1]) >= HeightOf(right[j + 1]));
      if (leftNext) {
        m_Mesh.m_aTriangles.push_back({right[j], left[i], left[i + 1]});
        ++i;
      } else {
        m_Mesh.m_aTriangles.push_back({right[j], left[i], right[j + 1]});
        ++j;
      }
    }
    m_Mesh.m_aTriangles.push_back({middle, right[j], left[i]});
  }

  CFileMesh& m_Mesh;
  float m_fX = 0;  ///< of the right side
  float m_fY = 0;  ///< of the upper side
  float m_fBase = 0;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> m_aBorder;  ///< sides, counter-clockwise
  std::map<CPlace, std::vector<float>> m_HeightsAt;                ///< of the vertices on the border
  std::map<std::uint32_t, CPoint> m_Feet;                          ///< by vertex that has been moved along the border
};

}  // namespace

CFileMesh CleanFileMesh(const CGrid& grid, const CCleanMeshOptions& options, const CExportSteps& steps) {
  constexpr double kCleanShare = 0.6;
  CCleanMesh clean = CleanMeshOf(grid, options, steps.Part(0, kCleanShare));
  CFileMesh mesh = EmptyMesh(grid, options);
  if (!steps.Goes(kCleanShare)) return mesh;
  mesh.m_aPositions = clean.TakeWritten();
  mesh.m_aPicturePlaces = clean.TakePictures();
  mesh.m_aTriangles = clean.TakeTriangles();
  const std::vector<CTriangle> strips = TrianglesOf(clean.Strips());
  mesh.m_aTriangles.insert(mesh.m_aTriangles.end(), strips.begin(), strips.end());
  const CExportSteps normals = steps.Part(kCleanShare, 1);
  if (!CSmoothNormals(mesh, clean.CornerCount(), clean.FanTriangleCount()).Add(normals)) return mesh;
  AddWalls(clean.Walls(), mesh);
  return mesh;
}

CFileMesh CleanSolid(const CGrid& grid, const CCleanMeshOptions& options, double base, const CExportSteps& steps) {
  constexpr double kCleanShare = 0.8;
  CCleanMeshOptions closed = options;
  closed.m_Gap = TearGap::Wall;
  closed.m_bOpenEdges = true;
  closed.m_bPictures = false;
  CCleanMesh clean = CleanMeshOf(grid, closed, steps.Part(0, kCleanShare));
  CFileMesh mesh = EmptyMesh(grid, options);
  if (!steps.Goes(kCleanShare)) return mesh;
  mesh.m_aPositions = clean.TakeWritten();
  mesh.m_aTriangles = clean.TakeTriangles();
  const std::size_t surface = mesh.m_aTriangles.size();
  const std::vector<CTriangle> walls = TrianglesOf(clean.Walls());
  mesh.m_aTriangles.insert(mesh.m_aTriangles.end(), walls.begin(), walls.end());
  CSolidCloser(mesh, clean.Feet(), base).Close(surface);
  return mesh;
}
