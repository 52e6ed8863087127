#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "mesh/CCutTriangulation.h"
#include "mesh/CMeshPlane.h"

/// Cuts a triangulation along straight lines.
///
/// A line becomes a path of cut sides: where it crosses a side, that is split. Points of the cut nearer to a vertex
/// than `kOnePoint`, or at a side nearer to it than that, are the vertex and split the side; so are those that rounding
/// would bring to a place where no triangle could be split. A vertex so near behind triangles without room cannot be
/// reached: the point gives way to it along the side. Linear in the number of triangles passed.
class CTearCutter {
 public:
  /// In cells one lattice step wide. Points of a cut nearer to each other than 2^-12 of a cell, which is four steps of
  /// a float at the border of the largest lattice, are one point; as two triangles without room may still part a new
  /// point from one that is nearer, it takes up half as much again.
  static constexpr double kOnePoint = 1.5 / 4096;
  static constexpr std::uint32_t kNone = CCutTriangulation::kNone;

  /// `triangles` must lie in `plane`.
  CTearCutter(CCutTriangulation& triangles, const CMeshPlane& plane) : m_Triangles(triangles), m_Plane(plane) {}

  /// Cuts from one place to another; both must lie in the triangulation.
  void Cut(const CMeshPlace& from, const CMeshPlace& to);
  /// The same from a vertex.
  void CutFrom(std::uint32_t vertex, const CMeshPlace& to);
  /// Splits the side between two vertices `share` of the way from one to the other. kNone where there is no such side,
  /// or it cannot be split there.
  std::uint32_t SplitBetween(std::uint32_t a, std::uint32_t b, double share);

 private:
  using CCorner = CCutTriangulation::CCorner;
  using CLine = std::array<CMeshPlace, 2>;

  std::uint32_t VertexAt(const CMeshPlace& place);
  std::uint32_t TriangleAt(const CMeshPlace& place);
  std::uint32_t PlaceIn(std::uint32_t t, const CMeshPlace& place);
  std::uint32_t NearestCorner(std::uint32_t t, const CMeshPlace& place) const;
  CMeshPlace Aim(std::uint32_t from, const CLine& line);
  std::uint32_t Step(std::uint32_t from, const CLine& line, bool& arrived);
  CCorner CornerTowards(std::uint32_t from, const CMeshPlace& to);
  std::uint32_t CrossSide(const CCorner& corner, const CMeshPlace& to);
  std::uint32_t SplitNear(std::uint32_t t, std::uint32_t side, const CMeshPlace& place, const CMeshPlace& to);
  std::vector<std::uint32_t> CornersBeside(std::uint32_t t, std::uint32_t side) const;
  std::uint32_t Nearer(double distance, std::uint32_t t, std::uint32_t side, const CMeshPlace& place);
  std::uint32_t GiveWay(std::uint32_t near, std::uint32_t t, std::uint32_t side, const CMeshPlace& place,
                        const CMeshPlace& to);
  double Between(std::uint32_t vertex, const CMeshPlace& place) const {
    return m_Plane.Distance(m_Triangles.Place(vertex), place);
  }

  CCutTriangulation& m_Triangles;
  const CMeshPlane& m_Plane;
  std::unordered_map<std::uint64_t, std::uint32_t> m_Vertices;  ///< what the places given before have become
  std::vector<CCorner> m_aCorners;                              ///< around the vertex in hand
  std::vector<std::uint32_t> m_auAround;                        ///< triangles near the place in hand
  std::uint32_t m_uLast = 0;                                    ///< a triangle near the place looked for last
};
