#include "io/VrmlExport.h"

#include <array>
#include <cstddef>
#include <ostream>
#include <vector>

#include "model/CGrid.h"
#include "quadtree/CEdge.h"

namespace {

constexpr const char* kHead =
    "#VRML V2.0 utf8\n\n"
    " Shape {\n"
    "\t appearance Appearance {\n"
    "\t\t material Material { }\n"
    "\t\t texture ImageTexture {\n"
    "\t\t\t url \"picture.jpg\"\n"
    "\t\t }\n"
    "\t }\n"
    "\t geometry IndexedFaceSet {\n"
    "\t\t coord Coordinate {\n"
    "\t\t\t point [\n";
constexpr const char* kFacesHead =
    "\t\t\t ]\n"
    "\t\t }\n"
    "\t\t coordIndex [\n";
constexpr const char* kTexturePointsHead =
    "\t\t ]\n"
    "\t\t texCoord TextureCoordinate {\n"
    "\t\t\t point [\n";
constexpr const char* kTextureFacesHead =
    "\t\t\t ]\n"
    "\t\t }\n"
    "\t\t texCoordIndex [\n";
constexpr const char* kTail =
    "\t\t ]\n"
    "\t\t solid FALSE\n"
    "\t }\n"
    "}\n";

struct CLatticePlace {
  double m_fColumn;
  double m_fRow;
};

CLatticePlace CentreOf(const CQuadT& leaf) { return {leaf.X0() + leaf.Size() / 2.0, leaf.Y0() + leaf.Size() / 2.0}; }

CLatticePlace PlaceOf(const CPointOrder& order, std::size_t k) {
  return {static_cast<double>(order.ColumnOf(k)), static_cast<double>(order.RowOf(k))};
}

void WritePoint(std::ostream& out, const CLattice& lattice, const CLatticePlace& place, double z) {
  const CExtent& e = lattice.Extent();
  const int steps = lattice.PointsPerSide() - 1;
  out << "\t\t\t\t " << (e.x1 - e.x0) * place.m_fColumn / steps + e.x0 << ' '
      << (e.y1 - e.y0) * place.m_fRow / steps + e.y0 << ' ' << z << ",\n";
}

void WritePoints(std::ostream& out, const CGrid& grid) {
  const CLattice& lattice = grid.Lattice();
  const CInterpolation surface = grid.Surface().Interpolation();
  grid.Tree().ForEachLeaf(
      [&](const CQuadT& leaf) { WritePoint(out, lattice, CentreOf(leaf), surface.CentreHeight(leaf)); });
  const CPointOrder& order = grid.Order();
  for (std::size_t k = 0; k < order.Count(); ++k)
    WritePoint(out, lattice, PlaceOf(order, k), lattice.Heights()[order.PointOf(k)]);
}

void WriteTexturePoints(std::ostream& out, const CGrid& grid) {
  const int steps = grid.PointsPerSide() - 1;
  const auto write = [&out, steps](const CLatticePlace& place) {
    out << "\t\t\t\t" << place.m_fColumn / steps << ' ' << place.m_fRow / steps << ",\n";
  };
  grid.Tree().ForEachLeaf([&](const CQuadT& leaf) { write(CentreOf(leaf)); });
  for (std::size_t k = 0; k < grid.Order().Count(); ++k) write(PlaceOf(grid.Order(), k));
}

// Appends the lattice indices of the points on an edge, without its last one, in the edge's own direction or against
// it.
void AppendSide(std::vector<std::size_t>& points, const CEdge& edge, bool forward, const CLattice& lattice) {
  if (edge.IsLeaf() || !edge.HasHalves()) {
    points.push_back(forward ? lattice.Index(edge.Xa(), edge.Ya()) : lattice.Index(edge.Xb(), edge.Yb()));
    return;
  }
  AppendSide(points, edge.Half(forward ? 0 : 1), forward, lattice);
  AppendSide(points, edge.Half(forward ? 1 : 0), forward, lattice);
}

// Anticlockwise from the lower left corner: the bottom and right sides run forward, the top and left sides backward.
void CollectBorder(const CQuadT& leaf, const CLattice& lattice, std::vector<std::size_t>& points) {
  points.clear();
  for (int side = 0; side < 4; ++side) AppendSide(points, leaf.Edge(side), side == kBottom || side == kRight, lattice);
}

void WriteFaces(std::ostream& out, const CGrid& grid) {
  const int leaves = grid.Tree().LeafCount();
  const auto indexOf = [&](std::size_t point) { return leaves + grid.Order().NumberOf(point); };
  std::vector<std::size_t> border;
  int centre = 0;
  grid.Tree().ForEachLeaf([&](const CQuadT& leaf) {
    CollectBorder(leaf, grid.Lattice(), border);
    for (std::size_t k = 0; k < border.size(); ++k) {
      out << "\t\t\t " << centre << ", " << indexOf(border[k]) << ", " << indexOf(border[(k + 1) % border.size()])
          << ", -1,\n";
    }
    ++centre;
  });
}

}  // namespace

void WriteVrml(std::ostream& out, const CGrid& grid) {
  out << kHead;
  WritePoints(out, grid);
  out << kFacesHead;
  WriteFaces(out, grid);
  out << kTexturePointsHead;
  WriteTexturePoints(out, grid);
  out << kTextureFacesHead;
  WriteFaces(out, grid);
  out << kTail;
}
