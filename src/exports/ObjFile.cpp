#include "exports/ObjFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

#include "base/NumberText.h"

namespace {

// Room for the longest line: three numbers of a vertex in three indices.
constexpr std::size_t kLongestLine = 128;

/// Appends lines of numbers to a text.
class CLines {
 public:
  explicit CLines(std::string& text) : m_Text(text) {}

  template <std::size_t kCount>
  void Put(const char* kind, const std::array<float, kCount>& numbers) {
    m_pEnd = std::copy_n(kind, std::char_traits<char>::length(kind), m_acLine.data());
    for (const float number : numbers) {
      *m_pEnd++ = ' ';
      PutNumber(number);
    }
    EndLine();
  }
  void PutFace(const std::array<std::uint32_t, 3>& triangle) {
    m_pEnd = m_acLine.data();
    *m_pEnd++ = 'f';
    for (const std::uint32_t vertex : triangle) {
      char before = ' ';
      // Place, picture and normal have the same number, from 1 on.
      for (int k = 0; k < 3; ++k) {
        *m_pEnd++ = before;
        PutNumber(std::uint64_t{vertex} + 1);
        before = '/';
      }
    }
    EndLine();
  }

 private:
  template <typename Number>
  void PutNumber(Number number) {
    m_pEnd = std::to_chars(m_pEnd, m_acLine.data() + m_acLine.size(), number).ptr;
  }
  void EndLine() {
    *m_pEnd++ = '\n';
    m_Text.append(m_acLine.data(), m_pEnd);
  }

  std::string& m_Text;
  std::array<char, kLongestLine> m_acLine{};
  char* m_pEnd = m_acLine.data();
};

// The lines of all points and faces; those that follow the place where it was cancelled are missing.
void PutMesh(const CFileMesh& mesh, UpAxis up, const CExportSteps& steps, CLines& lines) {
  double share = 0;
  const auto putAll = [&](double until, const auto& rows, const auto& put) {
    const CExportSteps part = steps.Part(share, until);
    share = until;
    return part.ForBlocks(rows.size(), [&](std::size_t begin, std::size_t end) {
      for (std::size_t k = begin; k < end; ++k) put(rows[k]);
    });
  };
  using CPoint = std::array<float, 3>;
  putAll(0.25, mesh.m_aPositions, [&](const CPoint& p) { lines.Put("v", Turned(p, up)); }) &&
      putAll(0.4, mesh.m_aPicturePlaces, [&](const std::array<float, 2>& p) { lines.Put("vt", p); }) &&
      putAll(0.7, mesh.m_aNormals, [&](const CPoint& n) { lines.Put("vn", Turned(n, up)); }) &&
      putAll(1, mesh.m_aTriangles, [&](const std::array<std::uint32_t, 3>& t) { lines.PutFace(t); });
}

}  // namespace

CObjTexts ObjOf(const CFileMesh& mesh, const std::string& material, const std::string& picture, UpAxis up,
                const CExportSteps& steps) {
  CObjTexts texts;
  std::string& text = texts.m_Model;
  text = "# made by relievo\n# middle " + ShortestText(mesh.m_afMiddle[0]) + ' ' + ShortestText(mesh.m_afMiddle[1]) +
         "\n# scale " + ShortestText(mesh.m_fScale) + "\nmtllib " + material + "\nusemtl photograph\n";
  CLines lines(text);
  PutMesh(mesh, up, steps, lines);
  texts.m_Material = "newmtl photograph\nKa 0 0 0\nKd 1 1 1\nKs 0 0 0\nillum 1\n";
  if (!picture.empty()) texts.m_Material += "map_Kd " + picture + '\n';
  return texts;
}
