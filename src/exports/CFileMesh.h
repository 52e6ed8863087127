#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// A surface of triangles as it goes into files: x to the right and y upwards in the picture from the middle of the
/// rectangle, z the height, in the unit of the file.
///
/// Normals and places in the picture are one for each position, or none at all. Triangles name three positions,
/// counter- clockwise as seen from +z.
struct CFileMesh {
  std::vector<std::array<float, 3>> m_aPositions;
  std::vector<std::array<float, 3>> m_aNormals;        ///< unit vectors
  std::vector<std::array<float, 2>> m_aPicturePlaces;  ///< 0 to 1 from the left and from the bottom
  std::vector<std::array<std::uint32_t, 3>> m_aTriangles;
  std::array<double, 2> m_afMiddle{};  ///< of the rectangle, model units: what has been subtracted
  double m_fScale = 1.0;               ///< units of the file in a model unit
};

/// A picture as the bytes of a file, with what they are.
struct CEncodedPicture {
  std::string m_Bytes;     ///< empty for no picture
  std::string m_MimeType;  ///< "image/jpeg" or "image/png"
};

/// Which axis of a file points up, where its format leaves that open.
enum class UpAxis { Y, Z };

/// A point or direction with the height along that axis; seen from above, the picture stays upright and unmirrored.
inline std::array<float, 3> Turned(const std::array<float, 3>& p, UpAxis up) {
  return up == UpAxis::Z ? p : std::array{p[0], p[2], -p[1]};
}
