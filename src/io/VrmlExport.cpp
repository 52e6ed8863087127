#include "io/VrmlExport.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <vector>

#include "model/CGrid.h"
#include "model/CSurfaceMesh.h"

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

// Calls `visit(vertex)` for every vertex of the mesh in the order of the file: the centres, then the unknowns.
template <typename Visit>
void ForEachPoint(const CSurfaceMesh& mesh, const CPointOrder& order, const Visit& visit) {
  for (std::size_t vertex = mesh.CornerCount(); vertex < mesh.VertexCount(); ++vertex) visit(vertex);
  for (std::size_t k = 0; k < order.Count(); ++k) visit(mesh.VertexAt(order.PointOf(k)));
}

void WritePoints(std::ostream& out, const CGrid& grid, const CSurfaceMesh& mesh) {
  std::vector<double> positions;
  mesh.Place(grid.Surface().Tree(), positions);
  mesh.Raise(grid.Surface().Tree(), std::span(positions));
  ForEachPoint(mesh, grid.Surface().Order(), [&](std::size_t vertex) {
    const double* p = &positions[3 * vertex];
    out << "\t\t\t\t " << p[0] << ' ' << p[1] << ' ' << p[2] << ",\n";
  });
}

void WriteTexturePoints(std::ostream& out, const CGrid& grid, const CSurfaceMesh& mesh) {
  const std::vector<CSurfaceMesh::CTexturePoint> coordinates = mesh.TextureCoordinates(grid.Surface().Tree());
  ForEachPoint(mesh, grid.Surface().Order(), [&](std::size_t vertex) {
    out << "\t\t\t\t" << coordinates[vertex].u << ' ' << coordinates[vertex].v << ",\n";
  });
}

// The scene has no gaps: triangles in a tear are written, too.
void WriteFaces(std::ostream& out, const CGrid& grid, const CSurfaceMesh& mesh) {
  const auto corners = static_cast<std::uint32_t>(mesh.CornerCount());
  const std::size_t leaves = mesh.VertexCount() - mesh.CornerCount();
  const auto indexOf = [&](std::uint32_t corner) {
    return leaves + static_cast<std::size_t>(grid.Surface().Order().NumberOf(mesh.Points()[corner]));
  };
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool /*torn*/) {
    out << "\t\t\t " << centre - corners << ", " << indexOf(a) << ", " << indexOf(b) << ", -1,\n";
  });
}

}  // namespace

void WriteVrml(std::ostream& out, const CGrid& grid) {
  CSurfaceMesh mesh;
  mesh.Build(grid.Surface().Tree());
  out << kHead;
  WritePoints(out, grid, mesh);
  out << kFacesHead;
  WriteFaces(out, grid, mesh);
  out << kTexturePointsHead;
  WriteTexturePoints(out, grid, mesh);
  out << kTextureFacesHead;
  WriteFaces(out, grid, mesh);
  out << kTail;
}
