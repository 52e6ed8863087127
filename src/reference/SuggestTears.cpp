#include "reference/SuggestTears.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <queue>
#include <utility>

#include "constraints/CPtCstr.h"
#include "lattice/CLattice.h"
#include "reference/CDepthMap.h"
#include "reference/Isolines.h"
#include "scissors/CLinkCosts.h"

namespace {

constexpr int kSteps = 16;
// Of the larger side: where the range is looked at, how far paths are from each other, and how far points move.
constexpr double kNearby = 0.01;
constexpr double kApart = 0.012;
constexpr double kReach = 0.005;
// Between two places on the way of a point, in pixels.
constexpr double kStride = 0.25;

/// What has been taken so far, as places in squares as wide as paths are to be apart.
class CTakenPlaces {
 public:
  CTakenPlaces(int width, int height, double apart)
      : m_fApart(apart),
        m_iColumns(static_cast<int>(width / apart) + 1),
        m_iRows(static_cast<int>(height / apart) + 1),
        m_aaPlaces(static_cast<std::size_t>(m_iColumns) * static_cast<std::size_t>(m_iRows)) {}

  void Add(const CIsoline& line) {
    for (const CPlanePoint& place : line.m_aPlaces)
      m_aaPlaces[SquareOf(ColumnOf(place), RowOf(place))].push_back(place);
  }
  bool IsNear(const CPlanePoint& place) const {
    const int column = ColumnOf(place);
    const int row = RowOf(place);
    for (int j = std::max(row - 1, 0); j <= std::min(row + 1, m_iRows - 1); ++j) {
      for (int i = std::max(column - 1, 0); i <= std::min(column + 1, m_iColumns - 1); ++i) {
        const auto near = [&](const CPlanePoint& p) { return std::hypot(p.x - place.x, p.y - place.y) < m_fApart; };
        if (std::ranges::any_of(m_aaPlaces[SquareOf(i, j)], near)) return true;
      }
    }
    return false;
  }

 private:
  int ColumnOf(const CPlanePoint& p) const { return std::clamp(static_cast<int>(p.x / m_fApart), 0, m_iColumns - 1); }
  int RowOf(const CPlanePoint& p) const { return std::clamp(static_cast<int>(p.y / m_fApart), 0, m_iRows - 1); }
  std::size_t SquareOf(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_iColumns) + static_cast<std::size_t>(column);
  }

  double m_fApart;
  int m_iColumns;
  int m_iRows;
  std::vector<std::vector<CPlanePoint>> m_aaPlaces;
};

// What of a line lies away from all that is taken.
std::vector<CIsoline> FarParts(CIsoline line, const CTakenPlaces& taken) {
  const auto isNear = [&](const CPlanePoint& place) { return taken.IsNear(place); };
  const auto first = std::ranges::find_if(line.m_aPlaces, isNear);
  if (first == line.m_aPlaces.end()) return {std::move(line)};
  // A closed line begins anew where it is cut, so that no part of it lies around its old beginning.
  if (line.m_bClosed) std::rotate(line.m_aPlaces.begin(), first, line.m_aPlaces.end());
  std::vector<CIsoline> parts(1);
  for (const CPlanePoint& place : line.m_aPlaces) {
    if (!isNear(place)) {
      parts.back().m_aPlaces.push_back(place);
    } else if (!parts.back().m_aPlaces.empty()) {
      parts.emplace_back();
    }
  }
  return parts;
}

/// A line that competes, and how many had been taken when it was last cut.
struct CCandidate {
  CIsoline m_Line;
  double m_fLength = 0.0;
  std::size_t m_uTaken = 0;
  bool operator<(const CCandidate& other) const { return m_fLength < other.m_fLength; }
};

// The longest first, each cut by those before it.
std::vector<CIsoline> ChooseLines(std::vector<CIsoline> lines, int count, const CDepthReading& reading) {
  const double apart = kApart * std::max(reading.Width(), reading.Height());
  CTakenPlaces taken(reading.Width(), reading.Height(), apart);
  std::priority_queue<CCandidate> candidates;
  std::vector<CIsoline> chosen;
  const auto compete = [&](CIsoline line) {
    const double length = line.Length();
    // What is shorter than the distance between two paths shows no gap.
    if (length >= apart) candidates.push({std::move(line), length, chosen.size()});
  };
  for (CIsoline& line : lines) compete(std::move(line));
  while (!candidates.empty() && static_cast<int>(chosen.size()) < count) {
    CCandidate longest = candidates.top();
    candidates.pop();
    if (longest.m_uTaken == chosen.size()) {
      taken.Add(longest.m_Line);
      chosen.push_back(std::move(longest.m_Line));
      continue;
    }
    for (CIsoline& part : FarParts(std::move(longest.m_Line), taken)) compete(std::move(part));
  }
  return chosen;
}

CPlanePoint GradientAt(const CDepthReading& reading, const CPlanePoint& p) {
  const CPlanePoint gradient{reading.Bilinear(p.x + 0.5, p.y) - reading.Bilinear(p.x - 0.5, p.y),
                             reading.Bilinear(p.x, p.y + 0.5) - reading.Bilinear(p.x, p.y - 0.5)};
  return std::isnan(gradient.x + gradient.y) ? CPlanePoint{0, 0} : gradient;
}

// How far along `direction` (unit length) from `place` a measure is largest; the nearest place of several.
template <typename Measure>
double WayToLargest(const CPlanePoint& place, const CPlanePoint& direction, double reach, const Measure& measure) {
  constexpr double kMuchLarger = 1 + 1e-9;
  double best = 0.0;
  double largest = measure(place);
  const int strides = static_cast<int>(reach / kStride);
  for (int stride = 1; stride <= strides; ++stride) {
    const double way = stride * kStride;
    for (const double along : {way, -way}) {
      const double value = measure({place.x + along * direction.x, place.y + along * direction.y});
      if (!(value > kMuchLarger * largest)) continue;
      largest = value;
      best = along;
    }
  }
  return best;
}

CPlanePoint ToSteepest(const CDepthReading& reading, const CPlanePoint& place, const CPlanePoint& direction) {
  const auto slope = [&](const CPlanePoint& p) {
    const bool inside = p.x >= 0 && p.y >= 0 && p.x <= reading.Width() - 1 && p.y <= reading.Height() - 1;
    const CPlanePoint gradient = GradientAt(reading, p);
    return inside ? std::hypot(gradient.x, gradient.y) : 0.0;
  };
  const double way = WayToLargest(place, direction, kReach * std::max(reading.Width(), reading.Height()), slope);
  return {place.x + way * direction.x, place.y + way * direction.y};
}

// The link that runs along an edge across `direction`, both with rows from the top.
int LinkAcross(const CPlanePoint& direction) {
  const auto straightness = [&](int link) {
    const CPixelPosition step = kLinkSteps[static_cast<std::size_t>(link)];
    const double along = step.m_iRow * direction.x - step.m_iColumn * direction.y;
    return std::abs(along) / std::hypot(step.m_iColumn, step.m_iRow);
  };
  int best = 0;
  for (int link = 1; link < kLinkCount / 2; ++link)
    if (straightness(link) > straightness(best)) best = link;
  return best;
}

// In the pixels of the photograph, whose rows begin at the top; `place` and `direction` are the map's.
CPlanePoint ToEdge(const CLinkCosts& photograph, const CDepthReading& reading, const CPlanePoint& place,
                   const CPlanePoint& direction) {
  const double scaleX = static_cast<double>(photograph.m_iWidth) / reading.Width();
  const double scaleY = static_cast<double>(photograph.m_iHeight) / reading.Height();
  const CPlanePoint start{(place.x + 0.5) * scaleX - 0.5, photograph.m_iHeight - 0.5 - (place.y + 0.5) * scaleY};
  const double length = std::hypot(direction.x * scaleX, direction.y * scaleY);
  const CPlanePoint along{direction.x * scaleX / length, -direction.y * scaleY / length};
  const int link = LinkAcross(along);
  const double plain = photograph.PlainCost(link);
  // The outermost pixels have no edges of their own, and tears go on to the border.
  const auto inside = [](int index, int size) {
    constexpr int kMargin = CLinkCosts::kMargin;
    return size > 2 * kMargin ? std::clamp(index, kMargin, size - 1 - kMargin) : index;
  };
  const auto strength = [&](const CPlanePoint& p) {
    const CPixelPosition pixel{static_cast<int>(std::lround(p.x)), static_cast<int>(std::lround(p.y))};
    if (!photograph.Contains(pixel)) return 0.0;
    const int column = inside(pixel.m_iColumn, photograph.m_iWidth);
    return plain - photograph.Cost({column, inside(pixel.m_iRow, photograph.m_iHeight)}, link);
  };
  const double reach = kReach * std::max(photograph.m_iWidth, photograph.m_iHeight);
  const double way = WayToLargest(start, along, reach, strength) / length;
  return {place.x + way * direction.x, place.y + way * direction.y};
}

// The outermost pixels are half a pixel inside; a gap that reaches them goes on to the border.
void LeadToBorder(const CDepthReading& reading, const CPlanePoint& traced, const CPlanePoint& end, bool atFront,
                  std::vector<CPlanePoint>& places) {
  CPlanePoint border = end;
  if (traced.x <= 0) border.x = -0.5;
  if (traced.x >= reading.Width() - 1) border.x = reading.Width() - 0.5;
  if (traced.y <= 0) border.y = -0.5;
  if (traced.y >= reading.Height() - 1) border.y = reading.Height() - 0.5;
  if (border.x != end.x || border.y != end.y) places.insert(atFront ? places.begin() : places.end(), border);
}

std::vector<CPlanePoint> Settled(const CIsoline& line, const CDepthReading& reading, const CLinkCosts* photograph) {
  std::vector<CPlanePoint> places;
  for (const CPlanePoint& traced : line.m_aPlaces) {
    CPlanePoint place = traced;
    const CPlanePoint gradient = GradientAt(reading, traced);
    const double slope = std::hypot(gradient.x, gradient.y);
    if (slope > 0) {
      const CPlanePoint direction{gradient.x / slope, gradient.y / slope};
      place = ToSteepest(reading, place, direction);
      if (photograph != nullptr) place = ToEdge(*photograph, reading, place, direction);
    }
    places.push_back(place);
  }
  if (line.m_bClosed) return places;
  const CPlanePoint first = places.front();
  const CPlanePoint last = places.back();
  LeadToBorder(reading, line.m_aPlaces.back(), last, false, places);
  LeadToBorder(reading, line.m_aPlaces.front(), first, true, places);
  return places;
}

}  // namespace

std::vector<CPtCstr> NodesOf(const CTearProposal& proposal) {
  std::vector<CPtCstr> nodes;
  for (const CPlanePoint& p : proposal.m_aPoints) nodes.push_back({.m_fX = p.x, .m_fY = p.y});
  return nodes;
}

std::vector<CTearProposal> SuggestTears(const CDepthReading& reading, const CTearWishes& wishes, const CExtent& extent,
                                        const CLinkCosts* photograph) {
  constexpr double kRange = 2.0;  // of values brought to -1..1
  const int radius = std::max(1, static_cast<int>(std::lround(kNearby * std::max(reading.Width(), reading.Height()))));
  const std::vector<std::uint8_t> steep = SteepPixels(reading, radius, kRange * wishes.m_fShare);
  std::vector<CIsoline> lines;
  for (int step = 1; step < kSteps; ++step) {
    for (CIsoline& line : IsolinesAt(reading, -1 + kRange * step / kSteps, steep)) lines.push_back(std::move(line));
  }
  std::vector<CTearProposal> proposals;
  for (const CIsoline& line : ChooseLines(std::move(lines), wishes.m_iCount, reading)) {
    CTearProposal& proposal = proposals.emplace_back();
    proposal.m_bClosed = line.m_bClosed;
    for (const CPlanePoint& p : Settled(line, reading, photograph))
      proposal.m_aPoints.push_back({extent.x0 + (p.x + 0.5) / reading.Width() * (extent.x1 - extent.x0),
                                    extent.y0 + (p.y + 0.5) / reading.Height() * (extent.y1 - extent.y0)});
  }
  return proposals;
}
