// The tree's costs against a shortest path search that was not written here.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <boost/graph/compressed_sparse_row_graph.hpp>
#include <boost/graph/dijkstra_shortest_paths.hpp>
#include <gtest/gtest.h>

#include "io/Bmp.h"
#include "lighting/CTextureImages.h"
#include "scissors/CTopDownImage.h"
#include "scissors/MinimumPathTree.h"
#include "support/ConsoleCapture.h"
#include "support/ScissorsBuilders.h"

namespace {

struct CLink {
  float m_fCost = 0;
};
using CLinkGraph = boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, CLink>;

int IndexOf(const CLinkCosts& costs, CPixelPosition p) { return p.m_iRow * costs.m_iWidth + p.m_iColumn; }

/// A vertex for each pixel, row by row, and an edge for each link that does not leave the picture.
CLinkGraph GraphOf(const CLinkCosts& costs) {
  std::vector<std::pair<int, int>> edges;
  std::vector<CLink> links;
  for (CPixelPosition p; p.m_iRow < costs.m_iHeight; ++p.m_iRow) {
    for (p.m_iColumn = 0; p.m_iColumn < costs.m_iWidth; ++p.m_iColumn) {
      for (int link = 0; link < kLinkCount; ++link) {
        const CPixelPosition& step = kLinkSteps[static_cast<std::size_t>(link)];
        const CPixelPosition q{p.m_iColumn + step.m_iColumn, p.m_iRow + step.m_iRow};
        if (!costs.Contains(q)) continue;
        edges.emplace_back(IndexOf(costs, p), IndexOf(costs, q));
        links.push_back({costs.Cost(p, link)});
      }
    }
  }
  const auto vertices = static_cast<std::size_t>(costs.m_iWidth) * static_cast<std::size_t>(costs.m_iHeight);
  return {boost::edges_are_sorted, edges.begin(), edges.end(), links.begin(), vertices};
}

/// Cost of the cheapest path from the seed to each pixel, row by row.
std::vector<float> ShortestPaths(const CLinkCosts& costs, CPixelPosition seed) {
  const CLinkGraph graph = GraphOf(costs);
  std::vector<float> distances(boost::num_vertices(graph));
  const auto vertexIndex = boost::get(boost::vertex_index, graph);
  boost::dijkstra_shortest_paths(graph, boost::vertex(static_cast<std::size_t>(IndexOf(costs, seed)), graph),
                                 boost::weight_map(boost::get(&CLink::m_fCost, graph))
                                     .distance_map(boost::make_iterator_property_map(distances.begin(), vertexIndex)));
  return distances;
}

std::vector<float> TreeCosts(const CLinkCosts& costs, CPixelPosition seed) {
  const CMinimumPathTree tree = CompleteTree(costs, seed);
  std::vector<float> total;
  for (CPixelPosition p; p.m_iRow < costs.m_iHeight; ++p.m_iRow) {
    for (p.m_iColumn = 0; p.m_iColumn < costs.m_iWidth; ++p.m_iColumn) total.push_back(tree.TotalCost(p));
  }
  return total;
}

/// Pixels whose costs differ. Both add in the same precision, and addition never turns the order of two sums around,
/// so the costs are not only close.
std::size_t CountDifferences(const CTopDownImage& image, CPixelPosition seed) {
  const CLinkCosts costs = ComputeLinkCosts(image);
  const std::vector<float> found = TreeCosts(costs, seed);
  const std::vector<float> expected = ShortestPaths(costs, seed);
  EXPECT_EQ(found.size(), expected.size());
  std::size_t differences = 0;
  for (std::size_t i = 0; i < expected.size(); ++i) differences += found[i] != expected[i] ? 1 : 0;
  return differences;
}

CTopDownImage Sample(const std::string& name) {
  const auto loaded = Global::LoadBMP(RELIEVO_SAMPLES "/" + name, 1);
  CTextureImages images;
  if (loaded.has_value()) images.SetPicture(loaded->m_Picture);
  return CopyPhotograph(images);
}

class ShortestPathsTest : public ::testing::Test {
 protected:
  ConsoleCapture m_Console;
};

}  // namespace

// From many equal costs (two levels of grey) to hardly any.
TEST_F(ShortestPathsTest, TreeHasTheCostsOfDijkstraOnRandomPictures) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    const int width = 20 + static_cast<int>(seed);
    const CTopDownImage picture = RandomTopDownImage(width, 17, seed, 2 + static_cast<int>(seed) * 20);
    EXPECT_EQ(CountDifferences(picture, {static_cast<int>(seed), static_cast<int>(seed)}), 0U) << seed;
  }
}

TEST_F(ShortestPathsTest, TreeHasTheCostsOfDijkstraOnTheCoffeeCup) {
  const CTopDownImage picture = Sample("coffee.bmp");
  ASSERT_EQ(picture.m_iWidth, 600);
  for (const CPixelPosition seed : {CPixelPosition{300, 110}, {0, 399}}) EXPECT_EQ(CountDifferences(picture, seed), 0U);
}

TEST_F(ShortestPathsTest, TreeHasTheCostsOfDijkstraOnTheCat) {
  const CTopDownImage picture = Sample("cat.bmp");
  ASSERT_EQ(picture.m_iWidth, 451);
  for (const CPixelPosition seed : {CPixelPosition{225, 150}, {450, 0}}) EXPECT_EQ(CountDifferences(picture, seed), 0U);
}
