// A tear does not leak: no leaf edge joins two lattice points on opposite sides of a position discontinuity.

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CurveRasteriser.h"
#include "support/ConsoleCapture.h"
#include "support/CurveBuilders.h"
#include "support/TearFlood.h"
#include "support/TreeBuilders.h"

namespace {

constexpr int kLevel = 5;
constexpr int kSide = 1 << kLevel;
constexpr int kCurves = 400;
// Lattice points nearer to a line than this are on neither side of it.
constexpr double kOnTheLine = 1e-9;

struct CPoint {
  double x;
  double y;
};
using CLine = std::array<CPoint, 2>;
/// Lower or left end, and whether the edge is horizontal. One step long.
struct CUnitEdge {
  int x;
  int y;
  bool m_bHorizontal;
  bool operator==(const CUnitEdge&) const = default;
  bool operator<(const CUnitEdge& e) const {
    return std::tie(x, y, m_bHorizontal) < std::tie(e.x, e.y, e.m_bHorizontal);
  }
  friend void PrintTo(const CUnitEdge& e, std::ostream* out) {
    *out << e.x << ',' << e.y << (e.m_bHorizontal ? '-' : '|');
  }
  bool IsOnTheBorder() const { return (m_bHorizontal ? y : x) % kSide == 0; }
  CLine Ends() const {
    const CPoint a{static_cast<double>(x), static_cast<double>(y)};
    return {a, m_bHorizontal ? CPoint{a.x + 1, a.y} : CPoint{a.x, a.y + 1}};
  }
};

double SideOf(const CPoint& p, const CLine& line) {
  const auto& [a, b] = line;
  return ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / std::hypot(b.x - a.x, b.y - a.y);
}
bool AreApart(const CPoint& p, const CPoint& q, const CLine& line) {
  const double sp = SideOf(p, line);
  const double sq = SideOf(q, line);
  return std::fmin(std::abs(sp), std::abs(sq)) > kOnTheLine && (sp > 0) != (sq > 0);
}
bool Cross(const CLine& a, const CLine& b) { return AreApart(a[0], a[1], b) && AreApart(b[0], b[1], a); }

// Every unit edge of the lattice.
void ForEachEdge(const std::function<void(const CUnitEdge&)>& visit) {
  for (int y = 0; y <= kSide; ++y) {
    for (int x = 0; x <= kSide; ++x) {
      if (x < kSide) visit({x, y, true});
      if (y < kSide) visit({x, y, false});
    }
  }
}

// A lattice of unit steps from 0 to 32, torn by one curve.
struct CTornTree : CTestTree {
  CTornTree(const CPlaces& places, bool closed, int startLevel = 2)
      : CTestTree(kLevel, startLevel, CExtent{0, kSide, 0, kSide}) {
    const ConsoleCapture console;
    const CTestCurve curve(places, closed);
    CCurveRasteriser(m_Tree).Rasterise(curve.m_Curve);
    m_Tree.RefreshEdgeMarks();
    curve.m_Curve.ForEachSegment([this](const CPtCstr& a, const CPtCstr& b) {
      m_aSegments.push_back({CPoint{a.m_fX, a.m_fY}, CPoint{b.m_fX, b.m_fY}});
    });
  }

  // Whether the edge is a leaf of the subdivision and joins its ends.
  bool Joins(const CUnitEdge& e) const {
    const CEdge* edge = m_Tree.FindEdge(e.x, e.y, e.m_bHorizontal ? e.x + 1 : e.x, e.m_bHorizontal ? e.y : e.y + 1);
    return edge != nullptr && edge->IsLeaf() && !edge->HasBothMarks();
  }
  // Those within the model: an edge of the border counts as marked from outside, so that a cell marked whole cuts it.
  std::set<CUnitEdge> CutEdges() const {
    std::set<CUnitEdge> cut;
    ForEachEdge([&](const CUnitEdge& e) {
      if (e.IsOnTheBorder()) return;
      const CEdge* edge = m_Tree.FindEdge(e.x, e.y, e.m_bHorizontal ? e.x + 1 : e.x, e.m_bHorizontal ? e.y : e.y + 1);
      if (edge != nullptr && edge->IsLeaf() && edge->HasBothMarks()) cut.insert(e);
    });
    return cut;
  }
  void ExpectCrossedEdgesCut() const {
    ForEachEdge([this](const CUnitEdge& e) {
      const bool crossed =
          std::ranges::any_of(m_aSegments, [&e](const CLine& segment) { return Cross(segment, e.Ends()); });
      if (!crossed) return;
      EXPECT_TRUE(m_Tree.FindEdge(e.x, e.y, e.m_bHorizontal ? e.x + 1 : e.x, e.m_bHorizontal ? e.y : e.y + 1) !=
                  nullptr)
          << "not refined at " << e.x << ", " << e.y;
      EXPECT_FALSE(Joins(e)) << e.x << ", " << e.y << (e.m_bHorizontal ? " to the right" : " upwards");
    });
  }
  CLatticePoints ReachableFrom(int x, int y) const { return ::ReachableFrom(m_Tree, x, y); }

  std::vector<CLine> m_aSegments;
};

// Places of four kinds: anywhere, on lattice lines, on lattice points, on the border.
class CRandomPlaces {
 public:
  explicit CRandomPlaces(std::uint32_t seed) : m_Random(seed) {}

  std::array<double, 2> Next() {
    switch (m_Random() % 6) {
      case 0:
        return {std::floor(Anywhere()), Anywhere()};
      case 1:
        return {Anywhere(), std::floor(Anywhere())};
      case 2:
        return {std::floor(Anywhere()), std::floor(Anywhere())};
      case 3:
        return {m_Random() % 2 == 0 ? 0.0 : kSide, Anywhere()};
      default:
        return {Anywhere(), Anywhere()};
    }
  }
  CPlaces Polyline(int nodes) {
    CPlaces places;
    for (int k = 0; k < nodes; ++k) places.push_back(k > 0 && m_Random() % 8 == 0 ? places.back() : Next());
    return places;
  }
  double Anywhere() { return std::uniform_real_distribution<double>(0.0, kSide)(m_Random); }
  bool Flip() { return m_Random() % 2 == 0; }

 private:
  std::mt19937 m_Random;
};

TEST(TearLeakTest, EdgesThatASegmentCrossesAreCut) {
  CRandomPlaces random(1);
  for (int k = 0; k < kCurves; ++k) {
    const CPlaces segment{random.Next(), random.Next()};
    SCOPED_TRACE(testing::PrintToString(segment));
    CTornTree(segment, false).ExpectCrossedEdgesCut();
  }
}

TEST(TearLeakTest, EdgesThatAPolylineCrossesAreCut) {
  CRandomPlaces random(2);
  for (int k = 0; k < kCurves; ++k) {
    const CPlaces polyline = random.Polyline(2 + k % 7);
    SCOPED_TRACE(testing::PrintToString(polyline));
    CTornTree(polyline, random.Flip()).ExpectCrossedEdgesCut();
  }
}

TEST(TearLeakTest, SegmentCutsOnlyWhatItMeets) {
  CRandomPlaces random(3);
  for (int k = 0; k < kCurves; ++k) {
    const CPlaces segment{{random.Anywhere(), random.Anywhere()}, {random.Anywhere(), random.Anywhere()}};
    SCOPED_TRACE(testing::PrintToString(segment));
    const CTornTree torn(segment, false);
    for (const CUnitEdge& e : torn.CutEdges())
      EXPECT_TRUE(Cross(torn.m_aSegments.front(), e.Ends())) << e.x << ", " << e.y;
  }
}

// The curve seen in a mirror, and the edges seen in it.
struct CMirror {
  const char* m_Name;
  std::array<double, 2> (*m_Place)(double x, double y);
  CUnitEdge (*m_Edge)(const CUnitEdge& e);
};
void PrintTo(const CMirror& mirror, std::ostream* out) { *out << mirror.m_Name; }

class MirroredTearTest : public testing::TestWithParam<CMirror> {};
INSTANTIATE_TEST_SUITE_P(
    Mirrors, MirroredTearTest,
    testing::Values(CMirror{"left and right",
                            [](double x, double y) {
                              return std::array{kSide - x, y};
                            },
                            [](const CUnitEdge& e) {
                              return CUnitEdge{kSide - e.x - (e.m_bHorizontal ? 1 : 0), e.y, e.m_bHorizontal};
                            }},
                    CMirror{"top and bottom",
                            [](double x, double y) {
                              return std::array{x, kSide - y};
                            },
                            [](const CUnitEdge& e) {
                              return CUnitEdge{e.x, kSide - e.y - (e.m_bHorizontal ? 0 : 1), e.m_bHorizontal};
                            }},
                    CMirror{"x and y",
                            [](double x, double y) {
                              return std::array{y, x};
                            },
                            [](const CUnitEdge& e) {
                              return CUnitEdge{e.y, e.x, !e.m_bHorizontal};
                            }}));

TEST_P(MirroredTearTest, CutsTheMirroredEdges) {
  CRandomPlaces random(4);
  for (int k = 0; k < kCurves; ++k) {
    CPlaces segment;
    CPlaces mirrored;
    for (int node = 0; node < 2; ++node) {
      segment.push_back({random.Anywhere(), random.Anywhere()});
      mirrored.push_back(GetParam().m_Place(segment.back()[0], segment.back()[1]));
    }
    SCOPED_TRACE(testing::PrintToString(segment));
    std::set<CUnitEdge> expected;
    for (const CUnitEdge& e : CTornTree(segment, false).CutEdges()) expected.insert(GetParam().m_Edge(e));
    EXPECT_EQ(CTornTree(mirrored, false).CutEdges(), expected);
  }
}

// Points strictly inside a star about the middle, given by its radius at equal angles.
bool IsInside(const CPlaces& star, int x, int y) {
  bool inside = false;
  for (std::size_t k = 0, last = star.size() - 1; k < star.size(); last = k++) {
    const auto& [xa, ya] = star[last];
    const auto& [xb, yb] = star[k];
    if ((ya > y) != (yb > y) && x < (xb - xa) * (y - ya) / (yb - ya) + xa) inside = !inside;
  }
  return inside;
}
bool IsNear(const std::vector<CLine>& segments, int x, int y) {
  return std::ranges::any_of(segments, [&](const CLine& s) {
    const CPoint p{static_cast<double>(x), static_cast<double>(y)};
    return std::abs(SideOf(p, s)) < kOnTheLine && std::fmin(s[0].x, s[1].x) <= x + kOnTheLine &&
           x <= std::fmax(s[0].x, s[1].x) + kOnTheLine;
  });
}

TEST(TearLeakTest, ClosedCurveEnclosesItsInside) {
  CRandomPlaces random(5);
  for (int k = 0; k < kCurves; ++k) {
    CPlaces star;
    const int points = 3 + k % 9;
    for (int node = 0; node < points; ++node) {
      const double angle = 2 * std::numbers::pi * node / points;
      const double radius = 3 + random.Anywhere() * 0.35;
      const double x = 16 + radius * std::cos(angle);
      const double y = 16 + radius * std::sin(angle);
      star.push_back(k % 3 == 0 ? std::array{std::round(x), std::round(y)} : std::array{x, y});
    }
    SCOPED_TRACE(testing::PrintToString(star));
    const CTornTree torn(star, true);
    for (const auto& [x, y] : torn.ReachableFrom(0, 0)) {
      EXPECT_TRUE(!IsInside(star, x, y) || IsNear(torn.m_aSegments, x, y)) << x << ", " << y;
    }
  }
}

TEST(TearLeakTest, CurveFromBorderToBorderDividesTheModel) {
  CRandomPlaces random(6);
  for (int k = 0; k < kCurves; ++k) {
    // From the left border to the right one, as far out as the cursor goes, and on the border itself.
    const double rim = k % 2 == 0 ? 0.1 : 0.0;
    CPlaces across{{rim, 1 + random.Anywhere() * 0.9}};
    for (int node = 1; node < k % 5; ++node)
      across.push_back({1.0 * kSide * node / (k % 5), 1 + random.Anywhere() * 0.9});
    across.push_back({kSide - rim, 1 + random.Anywhere() * 0.9});
    if (k % 3 == 0) {
      for (auto& [x, y] : across) y = std::round(y);
    }
    SCOPED_TRACE(testing::PrintToString(across));
    EXPECT_FALSE(CTornTree(across, false).ReachableFrom(0, 0).contains({0, kSide}));
    for (auto& [x, y] : across) std::swap(x, y);
    EXPECT_FALSE(CTornTree(across, false).ReachableFrom(0, 0).contains({kSide, 0}));
  }
}

TEST(TearLeakTest, DiagonalsDivideTheModel) {
  for (const double rim : {0.0, 0.1}) {
    const CTornTree rising({{rim, rim}, {kSide - rim, kSide - rim}}, false);
    EXPECT_FALSE(rising.ReachableFrom(0, kSide).contains({kSide, 0}));
    const CTornTree falling({{rim, kSide - rim}, {kSide - rim, rim}}, false);
    EXPECT_FALSE(falling.ReachableFrom(0, 0).contains({kSide, kSide}));
  }
}

TEST(TearLeakTest, LatticeLinesDivideTheModel) {
  for (const double at : {1.0, 8.0, 16.0, 31.0}) {
    EXPECT_FALSE(CTornTree({{at, 0}, {at, kSide}}, false).ReachableFrom(0, 0).contains({kSide, 0})) << at;
    EXPECT_FALSE(CTornTree({{0, at}, {kSide, at}}, false).ReachableFrom(0, 0).contains({0, kSide})) << at;
  }
}

TEST(TearLeakTest, OpenCurveWithinTheModelDividesNothing) {
  const CTornTree torn({{4.3, 16.2}, {27.9, 17.1}}, false);
  EXPECT_TRUE(torn.ReachableFrom(0, 0).contains({16, kSide}));
}

}  // namespace
