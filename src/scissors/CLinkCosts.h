#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "scissors/PixelPosition.h"

struct CTopDownImage;

/// Costs of the links between neighbouring pixels: the stronger the edge that runs along a link, the cheaper it is.
///
/// A link costs D_max - D, a straight one that times 1/sqrt(2), where D is the derivative of the picture across the
/// link and D_max the largest of all. A link that leaves one of the two outermost rows or columns has D = 0, also where
/// the same link counts from its other, inner pixel.
///
/// Within these two rules a link costs the same from both of its ends, so only the links 0 to 3 of a pixel are stored;
/// link k + 4 is link k of the neighbour. The nodes are the pixels with a border one pixel wide around them, row by row
/// from the top, so that every pixel has eight neighbours.
struct CLinkCosts {
  using Forward = std::array<float, kLinkCount / 2>;
  /// Distance from the border within which a pixel's own links have no derivative.
  static constexpr int kMargin = 2;

  int m_iWidth = 0;
  int m_iHeight = 0;
  float m_fMaximum = 1.0F;        ///< D_max; 1 in a picture without any edge, where only the lengths are left to count
  std::vector<Forward> m_aLinks;  ///< (width + 2) * (height + 2) nodes

  /// Nodes as laid out above: per row, in all, and the index of a pixel. In the margin are the two outermost rows and
  /// columns.
  std::size_t Stride() const { return static_cast<std::size_t>(m_iWidth) + 2; }
  std::size_t NodeCount() const { return Stride() * (static_cast<std::size_t>(m_iHeight) + 2); }
  std::size_t NodeAt(CPixelPosition p) const {
    return static_cast<std::size_t>(p.m_iRow + 1) * Stride() + static_cast<std::size_t>(p.m_iColumn + 1);
  }
  bool Contains(CPixelPosition p) const {
    return p.m_iColumn >= 0 && p.m_iColumn < m_iWidth && p.m_iRow >= 0 && p.m_iRow < m_iHeight;
  }
  bool IsInMargin(CPixelPosition p) const {
    return p.m_iColumn < kMargin || p.m_iColumn >= m_iWidth - kMargin || p.m_iRow < kMargin ||
           p.m_iRow >= m_iHeight - kMargin;
  }
  /// Cost of a link without a derivative, by its index.
  float PlainCost(int link) const;
  /// Cost of link `link` (0 to 7) of pixel `p` of the picture.
  float Cost(CPixelPosition p, int link) const;
};

/// The costs of a picture of any size, three passes over it, 16 bytes a pixel.
CLinkCosts ComputeLinkCosts(const CTopDownImage& image);
