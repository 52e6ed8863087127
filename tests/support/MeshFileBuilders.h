#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "exports/CleanFileMesh.h"

/// Small meshes for tests of files, and what takes the files' bytes apart.

/// A place of a vertex as most formats have it.
using CFilePoint = std::array<float, 3>;

/// A roof over a rectangle of 4 by 2: its ridge runs up the picture.
inline CFileMesh Roof() {
  const float s = std::sqrt(0.5F);
  CFileMesh mesh;
  mesh.m_aPositions = {{-2, -1, 0}, {0, -1, 2}, {2, -1, 0}, {-2, 1, 0}, {0, 1, 2}, {2, 1, 0}};
  mesh.m_aNormals = {{-s, 0, s}, {0, 0, 1}, {s, 0, s}, {-s, 0, s}, {0, 0, 1}, {s, 0, s}};
  mesh.m_aPicturePlaces = {{0, 0}, {0.5, 0}, {1, 0}, {0, 1}, {0.5, 1}, {1, 1}};
  mesh.m_aTriangles = {{0, 1, 3}, {1, 4, 3}, {1, 2, 4}, {2, 5, 4}};
  mesh.m_afMiddle = {10.5, -3};
  mesh.m_fScale = 0.25;
  return mesh;
}

/// What `put(sink)` gives.
template <typename Put>
std::string BytesPut(const Put& put) {
  std::string bytes;
  CByteSink sink([&bytes](std::string_view block) { bytes += block; });
  put(sink);
  sink.Flush();
  return bytes;
}

/// The number at a place, which goes on behind it.
template <typename Value>
Value Take(const std::string& bytes, std::size_t& at) {
  Value value{};
  std::memcpy(&value, bytes.data() + at, sizeof(value));
  at += sizeof(value);
  return value;
}
