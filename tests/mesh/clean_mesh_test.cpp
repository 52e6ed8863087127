#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CleanMeshBuilders.h"

namespace {

using CHeight = std::function<double(double, double)>;

double Low(double column, double row) { return 1.0 + 0.5 * column - 0.25 * row; }
double High(double column, double row) { return 12.0 - 0.75 * column + 1.5 * row; }

// In cells: what a float resolves at the border of 16 of them.
constexpr double kFloatStep = 1.0 / (1 << 20);

// Lattice points that the solver has no height of get one that nobody must see.
constexpr double kNoHeight = 1e4;

bool HasJoinedEdge(const CQuadTree& tree, int column, int row) {
  const auto joins = [&](int xa, int ya, int xb, int yb) {
    const CEdge* edge = tree.FindEdge(xa, ya, xb, yb);
    return edge != nullptr && edge->IsLeaf() && !edge->HasBothMarks();
  };
  for (int length = 1; length <= 1 << tree.Level(); length *= 2) {
    if (joins(column - length, row, column, row) || joins(column, row, column + length, row) ||
        joins(column, row - length, column, row) || joins(column, row, column, row + length))
      return true;
  }
  return false;
}

// The step between two functions at a line that is `side(column, row) = 0`, as the solver has it, and its clean mesh.
class CleanMeshTest : public ::testing::Test {
 protected:
  void Build(const std::vector<CTestTear>& tears, const CHeight& side, int level = 4, int baseLevel = 4) {
    m_Side = side;
    m_pGrid = std::make_unique<CTornGrid>(tears, level, baseLevel);
    m_pGrid->Raise([&](int column, int row) {
      return HasJoinedEdge(m_pGrid->Tree(), column, row) ? Step(column, row) : kNoHeight;
    });
    m_pMesh = std::make_unique<CCleanMesh>(m_pGrid->Mesh());
    m_pJudge = std::make_unique<CMeshJudge>(*m_pGrid, *m_pMesh);
    EXPECT_NEAR(m_pJudge->Covered(), 1.0, 1e-9);
    EXPECT_EQ(m_pJudge->BadAsWritten(), 0);
    EXPECT_EQ(m_pJudge->Cracks(), 0);
  }
  double Step(double column, double row) const {
    return m_Side(column, row) < 0 ? Low(column, row) : High(column, row);
  }
  // The largest difference of a corner from the function on the side of its triangle's middle.
  double LargestError() const {
    double largest = 0.0;
    const auto triangles = m_pMesh->Triangles();
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
      const auto v = triangles.subspan(t, 3);
      CMeshJudge::CPoint middle{};
      for (const std::uint32_t corner : v) {
        for (std::size_t axis = 0; axis < 2; ++axis) middle[axis] += m_pJudge->At(corner)[axis] / 3;
      }
      const bool low = m_Side(middle[0], middle[1]) < 0;
      for (const std::uint32_t corner : v) {
        const auto& [column, row] = m_pJudge->At(corner);
        const double z = low ? Low(column, row) : High(column, row);
        largest = std::max(largest, std::abs(m_pJudge->ZAt(corner) - z));
      }
    }
    return largest;
  }
  double LargestDistanceOfCutsFromLine() const {
    double largest = 0.0;
    for (const auto& side : m_pJudge->Cuts()) {
      const auto& [column, row] = m_pJudge->At(side.m_uFrom);
      largest = std::max(largest, std::abs(m_Side(column, row)));
    }
    return largest;
  }

  CHeight m_Side;
  std::unique_ptr<CTornGrid> m_pGrid;
  std::unique_ptr<CCleanMesh> m_pMesh;
  std::unique_ptr<CMeshJudge> m_pJudge;
};

// Distance to the left of the line from one point to another.
CHeight LeftOf(double x0, double y0, double x1, double y1) {
  return [=](double column, double row) {
    return ((x1 - x0) * (row - y0) - (y1 - y0) * (column - x0)) / std::hypot(x1 - x0, y1 - y0);
  };
}

CHeight Inside(double x, double y, double radius) {
  return [=](double column, double row) { return radius - std::hypot(column - x, row - y); };
}

CTestTear Circle(double x, double y, double radius, int nodes) {
  CTestTear tear{{}, true};
  for (int k = 0; k < nodes; ++k) {
    const double angle = 0.1 + 2 * std::numbers::pi * k / nodes;
    tear.m_aNodes.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
  }
  return tear;
}

}  // namespace

TEST_F(CleanMeshTest, WithoutTearsItIsTheSurfaceMesh) {
  Build(
      {}, [](double, double) { return -1.0; }, 4, 2);
  const std::span<const std::uint32_t> plain = m_pGrid->m_Plain.Triangles();
  EXPECT_TRUE(std::ranges::equal(m_pMesh->Triangles(), plain));
  EXPECT_EQ(m_pMesh->VertexCount(), m_pGrid->m_Plain.VertexCount());
  std::vector<double> positions;
  m_pGrid->m_Plain.Place(m_pGrid->Tree(), positions);
  m_pGrid->m_Plain.Raise(m_pGrid->Tree(), std::span(positions));
  for (std::size_t v = 0; v < m_pMesh->VertexCount(); ++v) {
    const Vector3 p = m_pMesh->Position(v);
    EXPECT_NEAR(p.x, positions[3 * v], 1e-12);
    EXPECT_NEAR(p.y, positions[3 * v + 1], 1e-12);
    EXPECT_EQ(p.z, positions[3 * v + 2]);
  }
}

TEST_F(CleanMeshTest, SlantedTearContinuesBothPlanesToTheCurve) {
  for (const double end : {9.7, 12.3, 15.9, 3.1, 6.2999}) {
    Build({{{{0.0, 2.6}, {16.0, end}}}}, LeftOf(0.0, 2.6, 16.0, end));
    EXPECT_LT(LargestError(), 1e-6) << end;
    EXPECT_LT(LargestDistanceOfCutsFromLine(), 4 * kFloatStep) << end;
  }
}

TEST_F(CleanMeshTest, SteepTearBesideLargeCellsToo) {
  Build({{{{20.99, 0.0}, {9.03, 32.0}}}}, LeftOf(20.99, 0.0, 9.03, 32.0), 5, 2);
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, LongTearDoesNotDriftAwayFromItsCurve) {
  // Through the vicinity of many lattice points, to which it is bent.
  Build({{{{0.0, 20.0002}, {256.0, 148.0006}}}}, LeftOf(0.0, 20.0002, 256.0, 148.0006), 8, 3);
  EXPECT_LT(LargestError(), 1e-6);
  EXPECT_LT(LargestDistanceOfCutsFromLine(), 4.0 / 4096);
}

TEST_F(CleanMeshTest, TearThroughLatticePointsLeavesThemOnTheSideThatTheyAreJoinedTo) {
  // Cells are marked above each of them before the next column is entered.
  Build({{{{0.0, 2.5}, {16.0, 10.5}}}}, LeftOf(0.0, 2.5 + 1e-9, 16.0, 10.5 + 1e-9));
  EXPECT_LT(LargestError(), 1e-6);
  EXPECT_LT(LargestDistanceOfCutsFromLine(), 4 * kFloatStep);
}

TEST_F(CleanMeshTest, TearAlongALatticeLineKeepsTheHeightsOfItsPointsOnOneSide) {
  // The cells above it are marked, so that the points on it stay with those below.
  Build({{{{0.0, 5.0}, {16.0, 5.0}}}}, LeftOf(0.0, 5.0 + 1e-9, 16.0, 5.0 + 1e-9));
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, TearAlongTheBorderLeavesTheSurfaceWhole) {
  Build({{{{0.0, 0.0}, {16.0, 0.0}}}}, [](double, double) { return -1.0; });
  EXPECT_TRUE(m_pJudge->Cuts().empty());
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, EndNextToTheBorderReachesIt) {
  Build({{{{0.2, 7.3}, {15.8, 7.3}}}}, LeftOf(0.0, 7.3, 16.0, 7.3));
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, EndInsideJoinsAtTheMeanOfBothSides) {
  Build({{{{0.0, 7.5}, {8.4, 7.5}}}}, LeftOf(0.0, 7.5, 16.0, 7.5));
  m_pGrid->Raise([](int column, int row) { return (row < 7.5 ? 2.0 : 4.0) * (10 - column); });
  const CCleanMesh mesh = m_pGrid->Mesh();
  const CMeshJudge judge(*m_pGrid, mesh);
  std::vector<double> ends;
  for (std::uint32_t v = 0; v < mesh.VertexCount(); ++v) {
    const auto& [column, row] = judge.At(v);
    if (std::hypot(column - 8.4, row - 7.5) < 1e-5) ends.push_back(judge.ZAt(v));
  }
  ASSERT_EQ(ends.size(), 1U);
  EXPECT_NEAR(ends[0], 3.0 * (10 - 8.4), 0.2);
}

TEST_F(CleanMeshTest, ClosedTearContinuesInsideAndOutside) {
  const CTestTear cup = Circle(8.2, 7.9, 4.7, 200);
  Build({cup}, Inside(8.2, 7.9, 4.7));
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, ClosedTearAroundOneLeaf) {
  const CTestTear square{{{7.55, 7.55}, {9.45, 7.55}, {9.45, 9.45}, {7.55, 9.45}}, true};
  Build({square}, [](double x, double y) { return 0.95 - std::max(std::abs(x - 8.5), std::abs(y - 8.5)); });
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, StripWithoutATriangleTakesThePlaneOfOneSide) {
  Build({{{{0.0, 7.2}, {16.0, 7.2}}}, {{{0.0, 7.6}, {16.0, 7.6}}}}, LeftOf(0.0, 7.4, 16.0, 7.4));
  const CHeight twice = m_Side;
  double lowError = 0.0;
  double highError = 0.0;
  m_Side = [&](double x, double y) { return twice(x, y) + 0.2; };
  highError = LargestError();
  m_Side = [&](double x, double y) { return twice(x, y) - 0.2; };
  lowError = LargestError();
  EXPECT_LT(std::min(lowError, highError), 1e-6);
}

TEST_F(CleanMeshTest, EndHalfACellFromAnotherTearIsLedToIt) {
  // Above and below the second tear the left part has two heights; only the led end keeps them apart.
  const CHeight side = [](double x, double y) { return x > 10.3 ? 1.0 : y - 7.4; };
  for (const double end : {9.9, 9.8, 9.7}) {
    Build({{{{10.3, 0.0}, {10.3, 16.0}}}, {{{0.0, 7.4}, {end, 7.4}}}}, side);
    EXPECT_LT(LargestError(), 1e-6) << end;
  }
}

TEST_F(CleanMeshTest, TwoEndsNearEachOtherAreJoined) {
  Build({{{{0.0, 7.4}, {7.8, 7.4}}}, {{{8.3, 7.4}, {16.0, 7.4}}}}, LeftOf(0.0, 7.4, 16.0, 7.4));
  EXPECT_LT(LargestError(), 1e-6);
}

TEST_F(CleanMeshTest, CrossingTearsPartFourSides) {
  Build({{{{0.0, 7.4}, {16.0, 7.4}}}, {{{8.3, 0.0}, {8.3, 16.0}}}}, LeftOf(0.0, 7.4, 16.0, 7.4));
  m_pGrid->Raise([](int column, int row) { return (column < 8.3 ? 1.0 : 2.0) + (row < 7.4 ? 0.0 : 5.0); });
  const CCleanMesh mesh = m_pGrid->Mesh();
  const CMeshJudge judge(*m_pGrid, mesh);
  std::vector<double> atCrossing;
  for (std::uint32_t v = 0; v < mesh.VertexCount(); ++v) {
    const auto& [column, row] = judge.At(v);
    if (std::hypot(column - 8.3, row - 7.4) < 1e-5) atCrossing.push_back(judge.ZAt(v));
  }
  std::ranges::sort(atCrossing);
  ASSERT_EQ(atCrossing.size(), 4U);
  const std::array<double, 4> sides{1.0, 2.0, 6.0, 7.0};
  for (std::size_t k = 0; k < sides.size(); ++k) EXPECT_NEAR(atCrossing[k], sides[k], 1e-9);
}

TEST_F(CleanMeshTest, WallIsAsLargeAsTheStepAndEndsWhereTheHeightsMeet) {
  // 2 above 0 on the left, 2 below it on the right, the same in the middle.
  Build({{{{0.0, 7.4}, {16.0, 7.4}}}}, LeftOf(0.0, 7.4, 16.0, 7.4));
  m_pGrid->Raise([](int column, int row) { return row < 7.4 ? 0.0 : (8.0 - column) / 4; });
  const CCleanMesh mesh = m_pGrid->Mesh({.m_Gap = TearGap::Wall});
  double area = 0.0;
  double farthest = 0.0;
  for (std::size_t t = 0; t < mesh.Walls().size(); t += 3) {
    const auto at = [&](std::size_t k) { return mesh.Position(mesh.Walls()[t + k]); };
    const Vector3 twice = Cross(at(1) - at(0), at(2) - at(0));
    area += Length(twice) / 2;
    farthest = std::max(farthest, std::abs(twice.z));
  }
  const double width = kOblong.x1 - kOblong.x0;
  EXPECT_NEAR(area, 2 * (2.0 * width / 2 / 2), 1e-4);
  EXPECT_LT(farthest, 1e-5);
}

TEST_F(CleanMeshTest, NoWallWhereBothHeightsAreTheSame) {
  Build({{{{0.0, 7.4}, {16.0, 7.4}}}}, LeftOf(0.0, 7.4, 16.0, 7.4));
  m_pGrid->Raise([](int /*column*/, int /*row*/) { return 1.0; });
  EXPECT_TRUE(m_pGrid->Mesh({.m_Gap = TearGap::Wall}).Walls().empty());
}

TEST_F(CleanMeshTest, HeightsStayNearThoseOfTheirSide) {
  Build({{{{0.0, 7.4}, {16.0, 8.8}}}}, LeftOf(0.0, 7.4, 16.0, 8.8));
  SetRandomHeights(m_pGrid->Lattice(), 5);
  const CCleanMesh mesh = m_pGrid->Mesh();
  for (std::size_t v = 0; v < mesh.VertexCount(); ++v) EXPECT_LE(std::abs(mesh.Vertex(v).m_fZ), 2.0);
}

// The side rises steeply before the tear, and goes on to no more than half of that beyond it: heights that are farther
// away, however high, lend it no room.
TEST_F(CleanMeshTest, HeightsFarFromATearDoNotWidenWhatIsContinuedThere) {
  const auto highestOnTear = [](int peakRow) {
    CTornGrid grid({{{{0.0, 7.9}, {16.0, 7.9}}}});
    grid.Raise([peakRow](int /*column*/, int row) { return row == peakRow ? 100.0 : row == 7 ? 10.0 : 0.0; });
    const CCleanMesh mesh = grid.Mesh();
    double highest = 0.0;
    for (std::size_t v = 0; v < mesh.VertexCount(); ++v) {
      const Vector3 p = mesh.Position(v);
      const double row = grid.Lattice().RowOf(p.y);
      if (row > 7.5 && row < 8.0) highest = std::max(highest, p.z);
    }
    return highest;
  };
  EXPECT_NEAR(highestOnTear(-1), 15.0, 1e-6);
  EXPECT_NEAR(highestOnTear(3), 15.0, 1e-6);
}

TEST_F(CleanMeshTest, SamplesAreClean) {
  for (const char* name : {"coffee.grid", "cat.grid"}) {
    CTornGrid grid({});
    ASSERT_EQ(grid.m_Grid.Load(std::string(RELIEVO_SAMPLES) + "/" + name), GridFileState::Whole);
    grid.m_Grid.PerformPendingWork();
    const CCleanMesh mesh = grid.Mesh();
    const CMeshJudge judge(grid, mesh);
    EXPECT_NEAR(judge.Covered(), 1.0, 1e-9) << name;
    EXPECT_EQ(judge.BadAsWritten(), 0) << name;
    EXPECT_EQ(judge.SharedTwice(), 0) << name;
    EXPECT_EQ(judge.Cracks(), 0) << name;
    EXPECT_FALSE(judge.Cuts().empty()) << name;
    const CSurface& surface = grid.m_Grid.Surface();
    const double more = 0.1 * (surface.MaxHeight() - surface.MinHeight());
    for (std::size_t v = 0; v < mesh.VertexCount(); ++v) {
      const CCleanMesh::CVertex vertex = mesh.Vertex(v);
      ASSERT_GT(vertex.m_fZ, surface.MinHeight() - more) << name;
      ASSERT_LT(vertex.m_fZ, surface.MaxHeight() + more) << name;
    }
  }
}

namespace {

// Cancels when it is asked for the so many-th time.
class CStopAfter : public ExportProgress {
 public:
  explicit CStopAfter(int calls) : m_iMost(calls) {}
  bool Goes(double share) override {
    EXPECT_GE(share, m_fShare);
    m_fLongest = std::max(m_fLongest, share - m_fShare);
    m_fShare = share;
    return ++m_iCalls < m_iMost;
  }
  int Calls() const { return m_iCalls; }
  double Last() const { return m_fShare; }
  // The largest share of the work between two questions, or behind the last one.
  double Longest() const { return std::max(m_fLongest, 1.0 - m_fShare); }
  int CallsWhenCancelled() const { return std::max(0, m_iCalls - m_iMost); }

 private:
  int m_iMost;
  int m_iCalls = 0;
  double m_fShare = 0.0;
  double m_fLongest = 0.0;
};

// Waves across the whole width, two cells apart.
std::vector<CTestTear> ManyTears(int cells) {
  std::vector<CTestTear> tears;
  for (int row = 2; row + 2 < cells; row += 2) {
    CTestTear tear;
    for (int column = 1; column < cells; ++column)
      tear.m_aNodes.push_back({column + 0.3, row + 0.5 + 0.4 * std::sin(0.7 * column)});
    tears.push_back(tear);
  }
  return tears;
}

}  // namespace

TEST(CleanMeshStepsTest, AreAskedAgainAndAgainAndStopTheMesh) {
  CTornGrid grid(ManyTears(128), 7, 7);
  for (const TearGap gap : {TearGap::Open, TearGap::Wall}) {
    const auto callsOf = [&](CStopAfter& progress) {
      grid.m_Plain.Build(grid.Tree());
      const CCleanMesh mesh(grid.Tree(), grid.m_Plain, grid.m_Grid.Constraints().Curves(), {.m_Gap = gap},
                            CExportSteps(&progress));
      return progress.Calls();
    };
    CStopAfter patient(1 << 20);
    const int calls = callsOf(patient);
    // With each pixel of the tears in a few blocks; the answer to a stop is one of these away.
    ASSERT_GE(calls, 20);
    // Gathering, telling sides apart, searching and walls each ask on their own.
    EXPECT_LE(patient.Longest(), 0.11);
    for (int k = 1; k < calls; k += 3) {
      CStopAfter progress(k);
      callsOf(progress);
      EXPECT_LE(progress.CallsWhenCancelled(), 3) << k;
    }
  }
}

TEST(CleanMeshStepsTest, AreAskedWhileStripsAreMade) {
  CTornGrid grid(ManyTears(32), 5, 5);
  grid.Raise([](int column, int row) { return row * std::cos(0.1 * column); });
  const auto make = [&](CStopAfter& progress) {
    grid.m_Plain.Build(grid.Tree());
    const CCleanMesh mesh(grid.Tree(), grid.m_Plain, grid.m_Grid.Constraints().Curves(),
                          {.m_Gap = TearGap::Under, .m_fUnderWidth = 2.0}, CExportSteps(&progress));
    return mesh.Strips().size();
  };
  CStopAfter patient(1 << 20);
  ASSERT_GT(make(patient), 0U);
  // The strips are the last part.
  EXPECT_GE(patient.Last(), 0.97);
  for (int k = 1; k < patient.Calls(); k += 3) {
    CStopAfter progress(k);
    EXPECT_EQ(make(progress), 0U) << k;
    EXPECT_LE(progress.CallsWhenCancelled(), 3) << k;
  }
}
