#include <algorithm>
#include <limits>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/CSurfaceMesh.h"
#include "quadtree/SightLine.h"
#include "support/AllocationCount.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();

std::optional<Vector3> Seen(const CTestTree& test, const CSightLine& line) {
  const auto [low, high] = std::minmax_element(test.m_Lattice.Heights().begin(), test.m_Lattice.Heights().end());
  return FirstSeen(test.m_Surface, line, *low, *high);
}

// Every triangle tried, each widened by `margin` in its own coordinates: the multiple of the direction.
class CAllTriangles {
 public:
  explicit CAllTriangles(CTestTree& test) {
    test.m_Tree.ListLeaves();
    m_Mesh.Build(test.m_Tree);
    m_Mesh.Place(test.m_Tree, m_afPositions);
    m_Mesh.Raise(test.m_Tree, std::span(m_afPositions));
  }
  double First(const CSightLine& line, double margin) const {
    double first = kNever;
    const auto triangles = m_Mesh.Triangles();
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
      const Vector3 a = Vertex(triangles[t]);
      first = std::min(first, Meet(line, a, Vertex(triangles[t + 1]) - a, Vertex(triangles[t + 2]) - a, margin));
    }
    return first;
  }
  Vector3 MiddleOf(std::size_t triangle) const {
    const auto corners = m_Mesh.Triangles().subspan(3 * triangle, 3);
    return 0.25 * Vertex(corners[0]) + 0.35 * Vertex(corners[1]) + 0.4 * Vertex(corners[2]);
  }
  Vector3 CornerOf(std::size_t triangle, std::size_t k) const { return Vertex(m_Mesh.Triangles()[3 * triangle + k]); }
  std::size_t Count() const { return m_Mesh.Triangles().size() / 3; }
  // Of all leaves, those in a tear, too: no wider than what those who ask know.
  std::pair<double, double> Heights() const {
    std::pair range{kNever, -kNever};
    for (std::size_t v = 0; v < m_Mesh.CornerCount(); ++v) {
      range.first = std::min(range.first, m_afPositions[3 * v + 2]);
      range.second = std::max(range.second, m_afPositions[3 * v + 2]);
    }
    return range;
  }

 private:
  Vector3 Vertex(std::uint32_t v) const {
    const double* p = &m_afPositions[3 * std::size_t{v}];
    return {p[0], p[1], p[2]};
  }
  static double Determinant(const Vector3& a, const Vector3& b, const Vector3& c) { return Dot(a, Cross(b, c)); }
  // a + u ab + v ac = point + t direction, by the rule of determinants.
  static double Meet(const CSightLine& line, const Vector3& a, const Vector3& ab, const Vector3& ac, double margin) {
    const Vector3 back = -1.0 * line.m_Direction;
    const Vector3 from = line.m_Point - a;
    const double d = Determinant(ab, ac, back);
    if (d == 0) return kNever;
    const double u = Determinant(from, ac, back) / d;
    const double v = Determinant(ab, from, back) / d;
    const bool met = u >= -margin && v >= -margin && u + v <= 1 + margin;
    return met ? Determinant(ab, ac, from) / d : kNever;
  }

  CSurfaceMesh m_Mesh;
  std::vector<double> m_afPositions;
};

TEST(FirstSeen, FromStraightAboveIsTheHeightThere) {
  CTestTree test(4, 1);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  test.Settle();
  SetRandomHeights(test.m_Lattice, 4);
  for (int j = 1; j < 40; ++j) {
    for (int i = 1; i < 40; ++i) {
      const double column = 0.4 * i;
      const double row = 0.4 * j;
      const Vector3 above{test.m_Lattice.XOf(column), test.m_Lattice.YOf(row), 70};
      const auto seen = Seen(test, {above, {0, 0, -2}});
      ASSERT_TRUE(seen) << i << ", " << j;
      EXPECT_NEAR(seen->x, above.x, 1e-9);
      EXPECT_NEAR(seen->y, above.y, 1e-9);
      EXPECT_NEAR(seen->z, test.m_Surface.HeightAt(column, row), 1e-8);
    }
  }
}

TEST(FirstSeen, HasNothingBesideTheSurfaceAndInTears) {
  CTestTree test(3, 3);
  test.Root().Child(0).Child(0).Child(0).SetFlags(CellFlag::kTriangles);
  test.Settle();
  const auto down = [&](double column, double row) {
    return Seen(test, {{test.m_Lattice.XOf(column), test.m_Lattice.YOf(row), 5}, {0, 0, -1}});
  };
  EXPECT_FALSE(down(-0.01, 2));
  EXPECT_FALSE(down(2, 8.01));
  EXPECT_FALSE(down(0.5, 0.4));
  EXPECT_TRUE(down(1.5, 0.4));
  EXPECT_TRUE(down(0, 8)) << "the corner belongs to it";
}

// A camera zoomed to nothing has no direction, and a surface that ran away no bounds.
TEST(FirstSeen, HasNothingWhereNumbersAreNone) {
  CTestTree test(3, 2);
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  for (const CSightLine& line :
       {CSightLine{{0, 0, 0}, {none, none, none}}, CSightLine{{none, 0, 0}, {0, 0, -1}},
        CSightLine{{0, none, 1}, {0, 1, -1}}, CSightLine{{kNever, 0, 0}, {0, 0, -1}}, CSightLine{{0, 0, 0}, {0, 0, 0}}})
    EXPECT_FALSE(FirstSeen(test.m_Surface, line, -1, 1).has_value());
  for (const Vector3& direction : {Vector3{0, 0, -1}, Vector3{0, 0, none}, Vector3{0, 0, 1}})
    EXPECT_FALSE(FirstSeen(test.m_Surface, {{0, 0, 0}, direction}, -kNever, kNever).has_value());
}

TEST(FirstSeen, OfAFoldIsTheSideThatOneLooksAt) {
  CTestTree test(5, 5);
  SetHeights(test.m_Lattice, CBump{});
  const CBump bump;
  const double y = bump.m_fY;
  const auto fromTheLeft = Seen(test, {{-50, y, 1}, {1, 0, 0}});
  const auto fromTheRight = Seen(test, {{-50, y, 1}, {-1, 0, 0}});
  ASSERT_TRUE(fromTheLeft && fromTheRight) << "a line has no beginning";
  EXPECT_LT(fromTheLeft->x, bump.m_fX);
  EXPECT_GT(fromTheRight->x, bump.m_fX);
  EXPECT_FALSE(Seen(test, {{-50, y, 3.5}, {1, 0, 0}})) << "over the top";
}

// Through a place on the surface, beside all triangles tried.
void ExpectFirst(const CTestTree& test, const CAllTriangles& triangles, const CSightLine& line) {
  const auto [low, high] = triangles.Heights();
  const auto seen = FirstSeen(test.m_Surface, line, low, high);
  RC_ASSERT(seen.has_value());
  const Vector3& through = line.m_Point;
  const double t = Dot(*seen - through, line.m_Direction) / Dot(line.m_Direction, line.m_Direction);
  RC_ASSERT(t <= triangles.First(line, -1e-9) + 1e-6);
  RC_ASSERT(t >= triangles.First(line, 1e-4) - 1e-6);
  RC_ASSERT(Length(through + t * line.m_Direction - *seen) < 1e-9);
}

RC_GTEST_PROP(FirstSeenProperty, IsTheFirstOfAllTriangles, (const std::vector<CTreeOp>& changes, std::uint32_t seed)) {
  CTestTree test(5, 2);
  for (const CTreeOp& change : changes) Apply(test.m_Tree, change);
  test.Settle();
  SetRandomHeights(test.m_Lattice, seed);
  const CAllTriangles triangles(test);
  RC_PRE(triangles.Count() > 0);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> part(-1.0, 1.0);
  for (int k = 0; k < 20; ++k) {
    const Vector3 target = triangles.MiddleOf(random() % triangles.Count());
    ExpectFirst(test, triangles, {target, {part(random), part(random), 0.3 * part(random)}});
  }
}

// Between leaves, along the lattice, and through the points that are the highest and the lowest. Without tears: along
// the side of one it is a matter of rounding whether there is anything. So it is on the border.
RC_GTEST_PROP(FirstSeenProperty, IsTheFirstAlongTheSidesOfLeaves,
              (const std::vector<CTreeOp>& changes, std::uint32_t seed)) {
  CTestTree test(5, 2);
  for (const CTreeOp& change : changes) {
    if (change.m_Kind != CTreeOp::Kind::kMark) Apply(test.m_Tree, change);
  }
  test.Settle();
  SetRandomHeights(test.m_Lattice, seed);
  const CAllTriangles triangles(test);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> part(-1.0, 1.0);
  for (std::size_t t = 0; t < triangles.Count(); ++t) {
    const Vector3 corner = triangles.CornerOf(t, random() % 3);
    const CExtent& e = test.m_Lattice.Extent();
    if (corner.x <= e.x0 || corner.x >= e.x1 || corner.y <= e.y0 || corner.y >= e.y1) continue;
    const double slope = t % 3 == 0 ? 0.0 : 0.1 * part(random);
    const double along = t % 2 == 0 ? 1.0 : -1.0;
    ExpectFirst(test, triangles, {corner, t % 4 < 2 ? Vector3{along, 0, slope} : Vector3{0, along, slope}});
  }
}

TEST(FirstSeen, AllocatesNothing) {
  CTestTree test(6, 6);
  SetRandomHeights(test.m_Lattice, 1);
  const std::size_t before = AllocationCount();
  ASSERT_TRUE(Seen(test, {{0, 22, 0}, {1, 0.1, 0.05}}));
  EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
