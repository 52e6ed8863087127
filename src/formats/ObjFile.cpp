#include "formats/ObjFile.h"

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

}  // namespace

CObjTexts ObjOf(const CFileMesh& mesh, const std::string& material, const std::string& picture, UpAxis up) {
  CObjTexts texts;
  std::string& text = texts.m_Model;
  text = "# made by relievo\n# middle " + ShortestText(mesh.m_afMiddle[0]) + ' ' + ShortestText(mesh.m_afMiddle[1]) +
         "\n# scale " + ShortestText(mesh.m_fScale) + "\nmtllib " + material + "\nusemtl photograph\n";
  CLines lines(text);
  for (const std::array<float, 3>& p : mesh.m_aPositions) lines.Put("v", Turned(p, up));
  for (const std::array<float, 2>& p : mesh.m_aPicturePlaces) lines.Put("vt", p);
  for (const std::array<float, 3>& n : mesh.m_aNormals) lines.Put("vn", Turned(n, up));
  for (const std::array<std::uint32_t, 3>& triangle : mesh.m_aTriangles) lines.PutFace(triangle);
  texts.m_Material = "newmtl photograph\nKa 0 0 0\nKd 1 1 1\nKs 0 0 0\nillum 1\n";
  if (!picture.empty()) texts.m_Material += "map_Kd " + picture + '\n';
  return texts;
}
