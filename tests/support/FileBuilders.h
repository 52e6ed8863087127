#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "io/GridFile.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

/// The bytes of a file; empty if it cannot be read.
inline std::string BytesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void WriteText(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

/// What the program would save of the model, without its lights.
inline std::string GridText(const CGrid& grid) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  WriteGrid(out, grid);
  WriteNoLights(out);
  return out.str();
}

inline GridFileState ReadText(CGrid& grid, const std::string& text) {
  std::istringstream in(text);
  return ReadGrid(in, grid);
}

/// `text` with the first occurrence of `part`, which must be there, replaced.
inline std::string Replaced(std::string text, const std::string& part, const std::string& by) {
  return text.replace(text.find(part), part.size(), by);
}

/// A curve through the places, model units, of the given type.
inline CCntrCtrl& AddCurveThrough(CGrid& grid, CurveType type, const std::vector<std::pair<double, double>>& places) {
  std::vector<CPtCstr> points;
  points.reserve(places.size());
  for (const auto& [x, y] : places) points.push_back({x, y});
  CCntrCtrl& curve = CStaging::Constraints(grid).Curves().Add(points, type, false);
  grid.Run().Post(Operation::kNewCurve);
  return curve;
}

/// A model of everything that a grid file holds, with short numbers, ready to be saved.
struct CFullModel : CTestGrid {
  explicit CFullModel(int maxLevel = 4, int baseLevel = 2) : CTestGrid(maxLevel, baseLevel) {
    AddAll(m_Grid, SomeConstraints());
    CStaging::Constraints(m_Grid).Headers() = {3, 4, 5};
    CStaging::Subdivision(m_Grid).Root().Child(1).Child(0).subdiv();
    CCntrCtrl& curve = AddCurveThrough(m_Grid, CurveType::kPosition, {{-1.5, 21}, {4.25, 23}, {9, 23.5}});
    curve.SetAllWeights(1, 2, 3, 4);
    curve.SetOption(CurveOption::kRightAutoBump, true);
    curve.SetOrientation(CurveSide::Left, -12.5);
    curve.SetOrientation(CurveSide::Right, 30);
    curve.SetDistance(CurveSide::Left, 2.5);
    curve.SetDistance(CurveSide::Right, 1.25);
    m_Grid.PerformPendingWork();
    SetRandomSurface(m_Grid, 7);
    m_Console.Take();
  }
};
