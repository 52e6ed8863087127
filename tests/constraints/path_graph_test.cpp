// The paths of the scissors against those of a graph library, on made-up pictures and on photographs.

#include <string>
#include <utility>
#include <vector>

#include <boost/graph/compressed_sparse_row_graph.hpp>
#include <boost/graph/dijkstra_shortest_paths_no_color_map.hpp>
#include <gtest/gtest.h>

#include "io/Bmp.h"
#include "lighting/CTextureImages.h"
#include "support/ConsoleCapture.h"
#include "support/ScissorsBuilders.h"

namespace {

struct CLink {
  float m_fCost;
};
using CGraph = boost::compressed_sparse_row_graph<boost::directedS, boost::no_property, CLink>;

std::size_t IndexOf(const CLinkCosts& costs, CPixelPosition p) {
  return static_cast<std::size_t>(p.m_iRow) * static_cast<std::size_t>(costs.m_iWidth) +
         static_cast<std::size_t>(p.m_iColumn);
}

template <typename Visit>
void ForEachPixel(const CLinkCosts& costs, Visit&& visit) {
  for (int row = 0; row < costs.m_iHeight; ++row) {
    for (int column = 0; column < costs.m_iWidth; ++column) visit(CPixelPosition{column, row});
  }
}

// One vertex per pixel, one edge per link to a neighbour within the picture.
CGraph GraphOf(const CLinkCosts& costs) {
  std::vector<std::pair<std::size_t, std::size_t>> edges;
  std::vector<CLink> links;
  ForEachPixel(costs, [&](CPixelPosition p) {
    for (int link = 0; link < kLinkCount; ++link) {
      const CPixelPosition q{p.m_iColumn + kLinkSteps[link].m_iColumn, p.m_iRow + kLinkSteps[link].m_iRow};
      if (!costs.Contains(q)) continue;
      edges.emplace_back(IndexOf(costs, p), IndexOf(costs, q));
      links.push_back({costs.Cost(p, link)});
    }
  });
  const auto pixels = static_cast<std::size_t>(costs.m_iWidth) * static_cast<std::size_t>(costs.m_iHeight);
  return {boost::edges_are_sorted, edges.begin(), edges.end(), links.begin(), pixels};
}

void ExpectCostsOfTheGraph(const CTopDownImage& image, CPixelPosition seed) {
  ASSERT_FALSE(image.m_aPixels.empty());
  const ConsoleCapture console;
  const CLinkCosts costs = ComputeLinkCosts(image);
  const CGraph graph = GraphOf(costs);
  std::vector<float> totals(boost::num_vertices(graph));
  boost::dijkstra_shortest_paths_no_color_map(
      graph, IndexOf(costs, seed),
      boost::weight_map(boost::get(&CLink::m_fCost, graph))
          .distance_map(boost::make_iterator_property_map(totals.begin(), boost::get(boost::vertex_index, graph))));
  const CMinimumPathTree tree = CompleteTree(costs, seed);
  ForEachPixel(costs, [&](CPixelPosition p) {
    ASSERT_EQ(tree.TotalCost(p), totals[IndexOf(costs, p)]) << p.m_iColumn << ", " << p.m_iRow;
  });
}

CTopDownImage Photograph(const std::string& file) {
  CTextureImages images;
  images.SetPicture(Global::LoadBMP(RELIEVO_SAMPLES "/" + file, 1)->m_Picture);
  return CopyPhotograph(images);
}

}  // namespace

TEST(PathGraphTest, RandomPicturesHaveTheCostsOfTheGraph) {
  for (const int levels : {2, 5, 256}) {
    for (unsigned seed = 0; seed < 4; ++seed) {
      ExpectCostsOfTheGraph(RandomPicture(60 + static_cast<int>(seed), 45, seed, levels),
                            {7 * static_cast<int>(seed), 40});
    }
  }
}

TEST(PathGraphTest, UniformPictureHasTheCostsOfTheGraph) { ExpectCostsOfTheGraph(GreyPicture(70, 50), {0, 49}); }

TEST(PathGraphTest, PhotographsHaveTheCostsOfTheGraph) {
  ExpectCostsOfTheGraph(Photograph("coffee.bmp"), {407, 113});
  ExpectCostsOfTheGraph(Photograph("cat.bmp"), {1, 1});
}
