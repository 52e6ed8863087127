#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CHierarchicalBasis.h"
#include "solver/TreeWalkTransform.h"
#include "support/CStaging.h"
#include "support/GridBuilders.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"
#include "support/TreeWalk.h"

namespace {

using Values = std::vector<double>;

// Of values in -1..1 that pass through at most kBasisLevel levels of prediction.
constexpr double kTolerance = 1e-12;
constexpr int kBasisLevel = 4;

// A tree after random changes and marks, numbered, with the transforms compiled for a random mode.
struct CRandomBasis : CTestTree {
  explicit CRandomBasis(std::vector<WaveletMode> modes = {kAllModes.begin(), kAllModes.end()})
      : CTestTree(kBasisLevel, *rc::gen::inRange(0, kBasisLevel + 1)), m_Mode(*rc::gen::elementOf(modes)) {
    ApplyAll(m_Tree, *GenTreeOps());
    Compile();
  }

  void Compile() {
    Settle();
    m_Basis.Compile(m_Order, m_Tree, m_Mode);
  }
  Values Random() const { return RandomValues(*rc::gen::arbitrary<std::uint32_t>(), m_Order.Count()); }
  template <typename Field>
  Values Sampled(const Field& field) const {
    Values byPoint(m_Lattice.PointCount());
    FillHeights(m_Lattice, byPoint, field);
    return Gathered(m_Order, byPoint);
  }
  Values W(const Values& heights) const {
    Values coefs(heights.size());
    m_Basis.W(ByScan(m_Order, heights), coefs);
    return coefs;
  }
  Values invW(const Values& coefs) const {
    Values heights(coefs.size());
    m_Basis.invW(coefs, heights);
    return ByUnknown(m_Order, heights);
  }
  // One value per lattice point; the points that are not in use get one that must not come through.
  Values Scattered(const Values& byUnknown) const {
    Values byPoint(m_Lattice.PointCount(), 1e9);
    for (std::size_t k = 0; k < byUnknown.size(); ++k) byPoint[m_Order.PointOf(k)] = byUnknown[k];
    return byPoint;
  }

  WaveletMode m_Mode;
  CHierarchicalBasis m_Basis;
};

double Dot(const Values& a, const Values& b) { return std::inner_product(a.begin(), a.end(), b.begin(), 0.0); }

double DotOfMagnitudes(const Values& a, const Values& b) {
  return std::inner_product(a.begin(), a.end(), b.begin(), 0.0, std::plus<>(),
                            [](double x, double y) { return std::abs(x * y); });
}

RC_GTEST_PROP(PointOrderProperty, PointsInUseAreNumberedAndNoOthers, ()) {
  const CRandomBasis basis;
  for (std::size_t point = 0; point < basis.m_Lattice.PointCount(); ++point)
    RC_ASSERT((basis.m_Order.NumberOf(point) >= 0) == basis.m_Lattice.Has(point, PointFlag::kInUse));
  RC_ASSERT(basis.m_Order.Count() == basis.m_Lattice.Count(PointFlag::kInUse));
}

RC_GTEST_PROP(PointOrderProperty, LevelsNeverDecrease, ()) {
  const CRandomBasis basis;
  for (std::size_t k = 1; k < basis.m_Order.Count(); ++k)
    RC_ASSERT(std::abs(basis.m_Order.LevelCode(k)) >= std::abs(basis.m_Order.LevelCode(k - 1)));
}

RC_GTEST_PROP(PointOrderProperty, ParentsAreNumberedBeforeTheirChildren, ()) {
  const CRandomBasis basis;
  for (std::size_t k = 0; k < basis.m_Order.Count(); ++k) {
    for (const auto& [column, row] : ParentsByCode(basis.m_Order, k)) {
      const int number = basis.m_Order.NumberOf(basis.m_Lattice.Index(column, row));
      RC_ASSERT(number >= 0);
      RC_ASSERT(static_cast<std::size_t>(number) < k);
    }
  }
}

RC_GTEST_PROP(BasisProperty, CoefficientIsHeightMinusMeanOfCountedParents, ()) {
  const CRandomBasis basis;
  const Values heights = basis.Random();
  const Values coefs = basis.W(heights);
  for (std::size_t k = 0; k < heights.size(); ++k) {
    const std::vector<std::size_t> parents = CountedParents(basis, k, basis.m_Mode);
    double sum = 0.0;
    for (const std::size_t parent : parents) sum += heights[parent];
    const double predicted = parents.empty() ? 0.0 : sum / static_cast<double>(parents.size());
    RC_ASSERT(std::abs(coefs[k] - (heights[k] - predicted)) <= kTolerance);
  }
}

RC_GTEST_PROP(BasisProperty, InverseUndoesTheTransform, ()) {
  const CRandomBasis basis;
  const Values heights = basis.Random();
  RC_ASSERT(LargestDifference(basis.invW(basis.W(heights)), heights) <= kTolerance);
}

RC_GTEST_PROP(BasisProperty, TransformUndoesTheInverse, ()) {
  const CRandomBasis basis;
  const Values coefs = basis.Random();
  RC_ASSERT(LargestDifference(basis.W(basis.invW(coefs)), coefs) <= kTolerance);
}

RC_GTEST_PROP(BasisProperty, TransposeIsTheAdjointOfTheInverse, ()) {
  const CRandomBasis basis;
  const Values a = basis.Random();
  const Values b = basis.Random();
  const Values heights = basis.invW(a);
  Values usedUp = ByScan(basis.m_Order, b);
  Values transposed(b.size());
  basis.m_Basis.invWTransposeTimes(usedUp, transposed);
  RC_ASSERT(std::abs(Dot(heights, b) - Dot(a, transposed)) <= kTolerance * (1.0 + DotOfMagnitudes(heights, b)));
}

RC_GTEST_PROP(BasisProperty, CompiledTransformEqualsTheTreeWalk, ()) {
  CRandomBasis basis;
  const Values heights = basis.Random();
  Values walked(basis.m_Lattice.PointCount());
  WalkW(basis.m_Tree, basis.m_Mode, basis.Scattered(heights), walked);
  RC_ASSERT(LargestDifference(basis.W(heights), Gathered(basis.m_Order, walked)) <= kTolerance);
}

RC_GTEST_PROP(BasisProperty, CompiledInverseEqualsTheTreeWalk, ()) {
  CRandomBasis basis;
  const Values coefs = basis.Random();
  Values walked = basis.Scattered(coefs);
  WalkInvW(basis.m_Tree, basis.m_Mode, walked);
  RC_ASSERT(LargestDifference(basis.invW(coefs), Gathered(basis.m_Order, walked)) <= kTolerance);
}

RC_GTEST_PROP(BasisProperty, ConstantSurfaceHasCoefficientsOnlyWhereNoParentCounts, ()) {
  const CRandomBasis basis;
  const double height = *rc::gen::inRange(-1000, 1000) / 8.0;
  const Values coefs = basis.W(basis.Sampled(CFlat{height}));
  for (std::size_t k = 0; k < coefs.size(); ++k) {
    const double wanted = CountedParents(basis, k, basis.m_Mode).empty() ? height : 0.0;
    RC_ASSERT(std::abs(coefs[k] - wanted) <= kTolerance * std::max(1.0, std::abs(height)));
  }
}

RC_GTEST_PROP(BasisProperty, PlaneHasCoefficientsAtTheCornersOnlyInSimpleMode, ()) {
  const CRandomBasis basis({WaveletMode::Simple});
  const CRamp ramp{*rc::gen::inRange(-40, 40) / 8.0, *rc::gen::inRange(-40, 40) / 8.0, 3.0};
  const Values heights = basis.Sampled(ramp);
  const Values coefs = basis.W(heights);
  for (std::size_t k = 0; k < 4; ++k) RC_ASSERT(coefs[k] == heights[k]);
  for (std::size_t k = 4; k < coefs.size(); ++k) RC_ASSERT(std::abs(coefs[k]) <= 1e-10);
}

// Cells one step wide that form a closed ring, two cells thick, round the middle of the lattice.
bool IsInRing(int i, int j) {
  const int half = 1 << (kBasisLevel - 1);
  const int distance = std::max(i >= half ? i - half : half - 1 - i, j >= half ? j - half : half - 1 - j);
  return distance == 3 || distance == 4;
}

bool IsInsideRing(int column, int row) {
  const int half = 1 << (kBasisLevel - 1);
  return std::max(std::abs(column - half), std::abs(row - half)) <= 3;
}

bool IsOutsideRing(int column, int row) {
  const int half = 1 << (kBasisLevel - 1);
  return std::max(std::abs(column - half), std::abs(row - half)) >= 5;
}

// Random subdivision inside and outside of a ring that lies wholly in a discontinuity.
void MarkRing(CRandomBasis& basis) {
  for (int j = 0; j < 1 << kBasisLevel; ++j) {
    for (int i = 0; i < 1 << kBasisLevel; ++i) {
      if (IsInRing(i, j)) MakeLeaf(basis.m_Tree, 0, i, j, CellFlag::kTriangles);
    }
  }
  basis.Compile();
}

template <typename Region>
void AddNoise(const CRandomBasis& basis, Region&& region, Values& values) {
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (region(basis.m_Order.ColumnOf(k), basis.m_Order.RowOf(k))) values[k] += 1.0 + static_cast<double>(k);
  }
}

template <typename Region>
bool AgreeIn(const CRandomBasis& basis, Region&& region, const Values& a, const Values& b) {
  for (std::size_t k = 0; k < a.size(); ++k) {
    if (region(basis.m_Order.ColumnOf(k), basis.m_Order.RowOf(k)) && a[k] != b[k]) return false;
  }
  return true;
}

RC_GTEST_PROP(BasisProperty, NoPredictionReachesOutOfAClosedDiscontinuity, ()) {
  CRandomBasis basis({WaveletMode::New});
  MarkRing(basis);
  const Values heights = basis.Random();
  Values changed = heights;
  AddNoise(basis, IsInsideRing, changed);
  RC_ASSERT(AgreeIn(basis, IsOutsideRing, basis.W(heights), basis.W(changed)));
  RC_ASSERT(AgreeIn(basis, IsOutsideRing, basis.invW(heights), basis.invW(changed)));
}

RC_GTEST_PROP(BasisProperty, NoPredictionReachesIntoAClosedDiscontinuity, ()) {
  CRandomBasis basis({WaveletMode::New});
  MarkRing(basis);
  const Values heights = basis.Random();
  Values changed = heights;
  AddNoise(basis, IsOutsideRing, changed);
  RC_ASSERT(AgreeIn(basis, IsInsideRing, basis.W(heights), basis.W(changed)));
  RC_ASSERT(AgreeIn(basis, IsInsideRing, basis.invW(heights), basis.invW(changed)));
}

RC_GTEST_PROP(GridProperty, RebuildKeepsTheSurfaceAtEveryPointInUse, ()) {
  CTestGrid test(kBasisLevel, *rc::gen::inRange(0, kBasisLevel + 1));
  CGrid& grid = test.m_Grid;
  grid.Builder().SetWaveletMode(*rc::gen::elementOf(kAllModes));
  for (int change = 0; change < 2; ++change) {
    // What curves do to the tree between two rebuilds: finer cells, and marks.
    ApplyAll(grid.Surface().Tree(), *GenTreeOps(6));
    grid.Surface().Tree().RefreshEdgeMarks();
    grid.BuildHNumerotation();
    SetRandomSurface(grid, *rc::gen::arbitrary<std::uint32_t>());
    const Values before = SurfaceOnLattice(grid);
    RandomiseRecord(CStaging::Subdivision(grid), *rc::gen::arbitrary<std::uint32_t>());
    test.m_Console.Take();
    grid.Builder().ReplaySubdivision();
    RC_ASSERT(test.m_Console.Take() == std::to_string(grid.Surface().ActivePointCount()) + " points\n");
    grid.Surface().Reconstruct();
    RC_ASSERT(LargestDifference(NodalHeights(grid), Gathered(grid.Surface().Order(), before)) <= 1e-9);
  }
}

}  // namespace
