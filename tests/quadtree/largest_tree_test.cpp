#include <array>

#include <gtest/gtest.h>

#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"

// More than a million cells of the finest size, in a fresh memory of hundreds of megabytes.
TEST(LargestTree, HasItsLastCellsAndEdges) {
  CLattice lattice(CLattice::kMaxLevel);
  CQuadTree tree(lattice);
  EXPECT_EQ(CLattice::kMaxLevel, 10);
  const auto rect = [](const CQuadT& cell) { return std::array{cell.X0(), cell.Y0(), cell.X1(), cell.Y1()}; };
  EXPECT_EQ(rect(tree.Root()), (std::array{0, 0, 1024, 1024}));
  EXPECT_EQ(rect(tree.CellAt(0, 1023, 700)), (std::array{1023, 700, 1024, 701}));
  const CEdge& edge = tree.VerticalEdge(0, 1024, 1023);
  EXPECT_EQ((std::array{edge.Xa(), edge.Ya(), edge.Xb(), edge.Yb()}), (std::array{1024, 1023, 1024, 1024}));
  EXPECT_EQ(tree.PointInCell_g(1023.5, 700.5), &tree.CellAt(0, 1023, 700));
}
