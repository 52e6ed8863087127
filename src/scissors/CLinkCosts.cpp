#include "scissors/CLinkCosts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "scissors/CTopDownImage.h"

namespace {

constexpr float kStraight = static_cast<float>(1.0 / std::numbers::sqrt2);

// The channels of one row, apart from each other so that neighbouring pixels lie side by side.
struct CChannels {
  explicit CChannels(int width) {
    for (auto& values : m_aaValues) values.resize(static_cast<std::size_t>(width));
  }
  void Read(const std::uint8_t* pixels) {
    const std::size_t width = m_aaValues[0].size();
    std::int16_t* const red = m_aaValues[0].data();
    std::int16_t* const green = m_aaValues[1].data();
    std::int16_t* const blue = m_aaValues[2].data();
    for (std::size_t x = 0; x < width; ++x) {
      red[x] = pixels[3 * x];
      green[x] = pixels[3 * x + 1];
      blue[x] = pixels[3 * x + 2];
    }
  }

  int At(std::size_t channel, int x) const { return m_aaValues[channel][static_cast<std::size_t>(x)]; }

  std::array<std::vector<std::int16_t>, 3> m_aaValues;
};

// Derivatives of links 0 to 3 of the pixels of row y, from the rows y - 1, y and y + 1.
//
//   3 2 1     link 0: the pixels above against those below     link 1: pixel 0 against pixel 2
//    \|/      link 2: the pixels left against those right      link 3: pixel 4 against pixel 2
//  4 -p- 0
class CRowDerivatives {
 public:
  explicit CRowDerivatives(int width) : m_iWidth(width) {
    for (auto& values : m_aafD) values.resize(static_cast<std::size_t>(width));
  }

  const std::vector<float>& Of(std::size_t link) const { return m_aafD[link]; }
  float Maximum() const { return m_fMaximum; }

  // Row y of a picture of this height, within [2, height - 2].
  void Compute(const CChannels& above, const CChannels& row, const CChannels& below, int y, int height) {
    for (auto& values : m_aafD) std::fill(values.begin(), values.end(), 0.0F);
    // A link has a derivative if one of its pixels lies inside the margin.
    const bool inside = y < height - CLinkCosts::kMargin;
    const bool insideAbove = y > CLinkCosts::kMargin;
    const int first = CLinkCosts::kMargin;
    const int end = m_iWidth - CLinkCosts::kMargin;
    if (inside)
      Fill(0, first - 1, end, 1.0F / 48, [&](std::size_t c, int x) {
        const std::int16_t* const up = above.m_aaValues[c].data() + x;
        const std::int16_t* const down = below.m_aaValues[c].data() + x;
        return up[0] + up[1] - down[0] - down[1];
      });
    Fill(1, insideAbove ? first - 1 : first, inside ? end : end - 1, 1.0F / 12,
         [&](std::size_t c, int x) { return row.At(c, x + 1) - above.At(c, x); });
    Fill(2, first, end, 1.0F / 48, [&](std::size_t c, int x) {
      const std::int16_t* const here = row.m_aaValues[c].data() + x;
      const std::int16_t* const up = above.m_aaValues[c].data() + x;
      return here[-1] + up[-1] - here[1] - up[1];
    });
    Fill(3, inside ? first : first + 1, insideAbove ? end + 1 : end, 1.0F / 12,
         [&](std::size_t c, int x) { return row.At(c, x - 1) - above.At(c, x); });
  }

 private:
  // The root of the mean square of the channels; `scale` takes in the factor of each difference and the third.
  template <typename Difference>
  void Fill(std::size_t link, int first, int end, float scale, Difference&& difference) {
    float* const out = m_aafD[link].data();
    float largest = m_fMaximum;
    for (int x = first; x < end; ++x) {
      const int red = difference(0, x);
      const int green = difference(1, x);
      const int blue = difference(2, x);
      const float d = std::sqrt(static_cast<float>(red * red + green * green + blue * blue) * scale);
      out[x] = d;
      largest = d > largest ? d : largest;
    }
    m_fMaximum = largest;
  }

  int m_iWidth;
  std::array<std::vector<float>, 4> m_aafD;
  float m_fMaximum = 0.0F;
};

void Interleave(const CRowDerivatives& derivatives, CLinkCosts::Forward* out) {
  const float* const d0 = derivatives.Of(0).data();
  const float* const d1 = derivatives.Of(1).data();
  const float* const d2 = derivatives.Of(2).data();
  const float* const d3 = derivatives.Of(3).data();
  const std::size_t width = derivatives.Of(0).size();
  for (std::size_t x = 0; x < width; ++x) out[x] = {d0[x], d1[x], d2[x], d3[x]};
}

// Leaves the derivatives where the costs will be; returns the largest.
float StoreDerivatives(const CTopDownImage& image, CLinkCosts& costs) {
  CRowDerivatives derivatives(image.m_iWidth);
  std::array<CChannels, 3> rows{CChannels(image.m_iWidth), CChannels(image.m_iWidth), CChannels(image.m_iWidth)};
  const auto read = [&](int y) {
    CChannels& row = rows[static_cast<std::size_t>(y % 3)];
    row.Read(image.m_aPixels.data() + 3 * static_cast<std::size_t>(y) * static_cast<std::size_t>(image.m_iWidth));
  };
  const auto row = [&](int y) -> const CChannels& { return rows[static_cast<std::size_t>(y % 3)]; };
  read(1);
  read(2);
  for (int y = CLinkCosts::kMargin; y <= image.m_iHeight - CLinkCosts::kMargin; ++y) {
    if (y + 1 < image.m_iHeight) read(y + 1);
    derivatives.Compute(row(y - 1), row(y), row(y + 1), y, image.m_iHeight);
    Interleave(derivatives, &costs.m_aLinks[costs.NodeAt({0, y})]);
  }
  return derivatives.Maximum();
}

}  // namespace

float CLinkCosts::PlainCost(int link) const { return link % 2 == 0 ? m_fMaximum * kStraight : m_fMaximum; }

float CLinkCosts::Cost(CPixelPosition p, int link) const {
  if (IsInMargin(p)) return PlainCost(link);
  if (link < kLinkCount / 2) return m_aLinks[NodeAt(p)][static_cast<std::size_t>(link)];
  const CPixelPosition step = kLinkSteps[static_cast<std::size_t>(link)];
  const CPixelPosition other{p.m_iColumn + step.m_iColumn, p.m_iRow + step.m_iRow};
  return m_aLinks[NodeAt(other)][static_cast<std::size_t>(link - kLinkCount / 2)];
}

CLinkCosts ComputeLinkCosts(const CTopDownImage& image) {
  CLinkCosts costs;
  costs.m_iWidth = image.m_iWidth;
  costs.m_iHeight = image.m_iHeight;
  costs.m_aLinks.resize(costs.NodeCount());
  const bool hasInside = std::min(image.m_iWidth, image.m_iHeight) > 2 * CLinkCosts::kMargin;
  const float largest = hasInside ? StoreDerivatives(image, costs) : 0.0F;
  if (largest > 0.0F) costs.m_fMaximum = largest;
  const float maximum = costs.m_fMaximum;
  for (CLinkCosts::Forward& links : costs.m_aLinks) {
    links = {(maximum - links[0]) * kStraight, maximum - links[1], (maximum - links[2]) * kStraight,
             maximum - links[3]};
  }
  return costs;
}
