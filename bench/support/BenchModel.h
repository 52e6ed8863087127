#pragma once

#include <cstddef>
#include <vector>

#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "solver/CHierarchicalBasis.h"

/// A fully refined lattice of one level with its tree, order and basis (New mode), and three vectors.
struct CBenchModel {
  explicit CBenchModel(int level) : m_Lattice(level), m_Tree(m_Lattice) {
    m_Tree.Reset(level);
    m_Order.Build(m_Tree);
    m_Basis.Compile(m_Order, m_Tree, WaveletMode::New);
    m_afX.resize(m_Order.Count());
    m_afY.resize(m_Order.Count());
    m_afZ.resize(m_Order.Count());
    for (std::size_t k = 0; k < m_afX.size(); ++k) m_afX[k] = static_cast<double>(k % 17) - 8.0;
  }

  CLattice m_Lattice;
  CQuadTree m_Tree;
  CPointOrder m_Order;
  CHierarchicalBasis m_Basis;
  std::vector<double> m_afX;
  std::vector<double> m_afY;
  std::vector<double> m_afZ;
};

/// Bytes of the cells and edges that a walk of the whole tree reads.
inline double TreeBytes(int level) {
  const auto points = static_cast<double>((std::size_t{1} << (2 * level)));
  return points * (4.0 / 3.0 * sizeof(CQuadT) + 8.0 / 3.0 * sizeof(CEdge));
}
