// The scissors on a photograph in its own size and enlarged to 1, 4 and 12 megapixels: link costs and the complete path
// tree, in nanoseconds and bytes per pixel; the tree in units of a lean search over the same costs, and both beside
// another implementation of the same task where that is installed.
//
// scissors_bench [picture.bmp]

#include <cstdint>
#include <cstdio>
#include <functional>
#include <limits>
#include <ostream>
#include <queue>
#include <utility>
#include <vector>

#ifdef RELIEVO_HAVE_OPENCV
#include <opencv2/imgproc/segmentation.hpp>
#endif

#include "base/Console.h"
#include "scissors/CLinkCosts.h"
#include "scissors/MinimumPathTree.h"
#include "support/BenchPicture.h"
#include "support/Timing.h"

namespace {

struct CTimes {
  double m_fCosts = 0.0;
  double m_fTree = 0.0;
  double m_fLean = 0.0;
};

CPixelPosition SeedOf(const CTopDownImage& image) { return {image.m_iWidth / 3, image.m_iHeight / 2}; }

// Distances alone, from a queue of the library that keeps outdated entries.
void SearchLean(const CLinkCosts& costs, CPixelPosition seed, std::vector<float>& distances) {
  using Entry = std::pair<float, std::size_t>;
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
  distances.assign(costs.NodeCount(), std::numeric_limits<float>::infinity());
  distances[costs.NodeAt(seed)] = 0.0F;
  queue.emplace(0.0F, costs.NodeAt(seed));
  const std::size_t stride = costs.Stride();
  while (!queue.empty()) {
    const auto [distance, node] = queue.top();
    queue.pop();
    if (distance > distances[node]) continue;
    const CPixelPosition p{static_cast<int>(node % stride) - 1, static_cast<int>(node / stride) - 1};
    for (int link = 0; link < kLinkCount; ++link) {
      const CPixelPosition step = kLinkSteps[static_cast<std::size_t>(link)];
      const CPixelPosition q{p.m_iColumn + step.m_iColumn, p.m_iRow + step.m_iRow};
      if (!costs.Contains(q)) continue;
      const float candidate = distance + costs.Cost(p, link);
      if (candidate >= distances[costs.NodeAt(q)]) continue;
      distances[costs.NodeAt(q)] = candidate;
      queue.emplace(candidate, costs.NodeAt(q));
    }
  }
}

CTimes TimeOurs(const CTopDownImage& image) {
  CTimes times;
  times.m_fCosts = SecondsPerCall(1, [&] { ComputeLinkCosts(image); });
  const CLinkCosts costs = ComputeLinkCosts(image);
  CMinimumPathTree tree(costs);
  const std::size_t pixels = image.m_aPixels.size() / 3;
  times.m_fTree = SecondsPerCall(1, [&] {
    tree.Start(SeedOf(image), pixels);
    tree.Advance(pixels);
  });
  std::vector<float> distances;
  times.m_fLean = Seconds([&] { SearchLean(costs, SeedOf(image), distances); });
  return times;
}

#ifdef RELIEVO_HAVE_OPENCV
CTimes TimePeer(const CTopDownImage& image) {
  CTopDownImage copy = image;
  const cv::Mat picture(image.m_iHeight, image.m_iWidth, CV_8UC3, copy.m_aPixels.data());
  cv::segmentation::IntelligentScissorsMB peer;
  CTimes times;
  times.m_fCosts = SecondsPerCall(1, [&] { peer.applyImage(picture); });
  const cv::Point seed(SeedOf(image).m_iColumn, SeedOf(image).m_iRow);
  times.m_fTree = SecondsPerCall(1, [&] { peer.buildMap(seed); });
  return times;
}
#endif

void Report(const CTopDownImage& image) {
  const double pixels = static_cast<double>(image.m_aPixels.size()) / 3;
  const CTimes ours = TimeOurs(image);
  std::printf("%5d x %5d: link costs %6.1f ns, tree %6.1f ns a pixel, %.2f lean searches", image.m_iWidth,
              image.m_iHeight, ours.m_fCosts * 1e9 / pixels, ours.m_fTree * 1e9 / pixels, ours.m_fTree / ours.m_fLean);
#ifdef RELIEVO_HAVE_OPENCV
  const CTimes peer = TimePeer(image);
  std::printf("; peer %6.1f and %6.1f; ratios %.2f and %.2f", peer.m_fCosts * 1e9 / pixels, peer.m_fTree * 1e9 / pixels,
              ours.m_fCosts / peer.m_fCosts, ours.m_fTree / peer.m_fTree);
#endif
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  std::ostream nowhere(nullptr);
  const CConsoleRedirect quiet(nowhere);
  const CTopDownImage picture = argc > 1 ? ReadPicture(argv[1]) : DrawPicture(600, 400);
  Report(picture);
  for (const double megapixels : {1.0, 4.0, 12.0}) Report(Enlarge(picture, megapixels * 1e6));
  std::printf("memory: %zu bytes a pixel for the links, %zu for the tree without its heap\n",
              sizeof(CLinkCosts::Forward), sizeof(float) + sizeof(std::int32_t) + 1);
  return 0;
}
