#pragma once

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <rapidcheck.h>

#include "projects/CProject.h"
#include "quadtree/CSaveQuadT.h"
#include "support/ConsoleCapture.h"
#include "support/GridBuilders.h"

/// A small model as the window saves it, seen from straight above its middle: one height, no picture. The rest of the
/// views is for the caller to fill in.
inline CProject ProjectOfOneHeight(double height = 7) {
  const ConsoleCapture console;
  CGrid grid;
  grid.AddPtCstr({30, 40, PtCstrKind::kPosition, height});
  grid.PerformPendingWork();
  CProject project;
  project.m_Model = StateOf(grid);
  project.m_Heights = SolvedHeights(grid);
  project.m_Views.m_Eye = {50, 50, 200};
  project.m_Views.m_Up = {0, 70, 0};
  return project;
}

// Documents and projects by chance: every value that one may have, whether or not it makes sense as a model.

/// Finite numbers of any size, both zeros and those without a full mantissa included.
inline rc::Gen<double> AnyNumber() {
  return rc::gen::map(rc::gen::arbitrary<std::uint64_t>(), [](std::uint64_t bits) {
    const auto number = std::bit_cast<double>(bits);
    return std::isfinite(number) ? number : -0.0;
  });
}

inline std::vector<double> Numbers(std::size_t count) {
  return *rc::gen::container<std::vector<double>>(count, AnyNumber());
}

inline CPtCstr AnyPoint() {
  const std::vector<double> n = Numbers(5);
  return {n[0], n[1], *rc::gen::arbitrary<std::uint32_t>(), n[2], n[3], n[4]};
}

inline void AddAnyCurve(CCntrCtrlList& curves) {
  CCntrCtrl& curve = curves.Add();
  curve.SetClosed(*rc::gen::arbitrary<bool>());
  curve.SetType(static_cast<CurveType>(*rc::gen::arbitrary<std::uint32_t>()));
  curve.SetOption(*rc::gen::arbitrary<std::uint32_t>(), true);
  for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
    const std::vector<double> n = Numbers(2);
    curve.SetDistance(side, n[0]);
    curve.SetOrientation(side, n[1]);
  }
  for (int k = *rc::gen::inRange(0, 5); k > 0; --k) {
    CCntrNode& node = curve.Nodes().emplace_back();
    static_cast<CPtCstr&>(node) = AnyPoint();
    const std::vector<double> w = Numbers(4);
    node.m_Weights = {w[0], w[1], w[2], w[3]};
  }
}

inline CSubdivisionBits AnySubdivision(int depth) {
  CSubdivisionRecord record(depth);
  record.SetStartLevel(*rc::gen::inRange(0, depth + 1));
  RandomiseRecord(record, *rc::gen::arbitrary<std::uint32_t>());
  return CSubdivisionBits(record);
}

inline rc::Gen<CSketch> AnySketch() {
  return rc::gen::exec([] {
    CSketch sketch;
    sketch.m_iMaxLevel = *rc::gen::inRange(1, 6);
    sketch.m_iBaseLevel = *rc::gen::inRange(0, sketch.m_iMaxLevel + 1);
    sketch.m_iNewBaseLevel = *rc::gen::inRange(0, 8);
    sketch.m_bHighRes = *rc::gen::arbitrary<bool>();
    const double x0 = *rc::gen::inRange(-100000, 100000) / 7.0;
    const double y0 = *rc::gen::inRange(-100000, 100000) / 3.0;
    sketch.m_Extent = {x0, x0 + *rc::gen::inRange(1, 100000) / 11.0, y0, y0 + *rc::gen::inRange(1, 100000) / 13.0};
    for (CSubdivisionBits& bits : sketch.m_aSubdivisions) bits = AnySubdivision(sketch.m_iMaxLevel);
    sketch.m_ListHeaders = {*rc::gen::arbitrary<int>(), *rc::gen::arbitrary<int>(), *rc::gen::arbitrary<int>()};
    for (int k = *rc::gen::inRange(0, 6); k > 0; --k) sketch.m_Points.Add(AnyPoint());
    for (int k = *rc::gen::inRange(0, 4); k > 0; --k) AddAnyCurve(sketch.m_Curves);
    for (int k = *rc::gen::inRange(0, 4); k > 0; --k) {
      const std::vector<double> n = Numbers(2);
      sketch.m_PendingCurve.Append(n[0], n[1]);
    }
    sketch.m_PendingCurve.SetClosedOnValidate(*rc::gen::arbitrary<bool>());
    return sketch;
  });
}

inline CLightSet AnyLights() {
  CLightSet lights;
  for (CLight& light : lights.m_aLights) {
    light.m_bActive = *rc::gen::arbitrary<bool>();
    light.m_bDrawn = *rc::gen::arbitrary<bool>();
    const std::vector<double> n = Numbers(11);
    std::copy_n(n.begin(), 4, light.m_afDirection.begin());
    std::copy_n(n.begin() + 4, 3, light.m_afColour.begin());
    std::copy_n(n.begin() + 7, 4, light.m_afTubeColour.begin());
  }
  return lights;
}

inline CProjectViews AnyViews() {
  const std::vector<double> n = Numbers(16);
  return {*rc::gen::inRange(0, 200),
          *rc::gen::arbitrary<std::uint32_t>(),
          *rc::gen::arbitrary<std::uint32_t>(),
          *rc::gen::arbitrary<std::uint32_t>(),
          *rc::gen::inRange(0, 5),
          *rc::gen::inRange(1, 10000) / 99.0,
          {n[0], n[1]},
          {n[2], n[3], n[4]},
          {n[5], n[6], n[7]},
          {n[8], n[9], n[10]},
          n[11],
          n[12],
          n[13],
          n[14],
          n[15]};
}

inline CModelState AnyModel() {
  CModelState model;
  CSketch& sketch = model.m_Document.m_Sketch = *AnySketch();
  model.m_Document.m_RemovedLights = AnyLights();
  model.m_Document.m_AddedLights = AnyLights();
  model.m_Document.m_Tone = *rc::gen::arbitrary<bool>() ? Tone::Soft : Tone::Clipped;
  model.m_iNewMaxLevel = *rc::gen::inRange(1, 11);
  model.m_fPickTolerance = *rc::gen::inRange(1, 10000) / 99.0;
  const std::size_t side = (std::size_t{1} << sketch.m_iMaxLevel) + 1;
  CSurfaceState surface{RandomValues(*rc::gen::arbitrary<std::uint32_t>(), side * side),
                        RandomValues(*rc::gen::arbitrary<std::uint32_t>(), side * side),
                        kAllModes[*rc::gen::inRange<std::size_t>(0, kAllModes.size())]};
  model.m_pSurface = std::make_shared<const CSurfaceState>(std::move(surface));
  CSolverState solver{Numbers(*rc::gen::inRange<std::size_t>(0, 20)), Numbers(*rc::gen::inRange<std::size_t>(0, 20)),
                      *rc::gen::inRange(-1, 100000), *rc::gen::arbitrary<bool>(), *rc::gen::arbitrary<bool>()};
  model.m_pSolver = std::make_shared<const CSolverState>(std::move(solver));
  return model;
}

inline rc::Gen<CProject> AnyProject() {
  return rc::gen::exec([] {
    CProject project;
    project.m_Model = AnyModel();
    project.m_Views = AnyViews();
    for (int k = *rc::gen::inRange(0, 4); k > 0; --k) {
      const std::vector<double> n = Numbers(11);
      project.m_aRecording.push_back({{n[0], n[1], n[2]}, {n[3], n[4], n[5]}, {n[6], n[7], n[8]}, n[9], n[10]});
    }
    std::string name = *rc::gen::arbitrary<std::string>();
    std::erase(name, '\0');
    if (*rc::gen::arbitrary<bool>()) project.m_ModelFile = "/" + name;
    if (*rc::gen::arbitrary<bool>()) {
      project.m_Picture.m_File = "/tmp/" + name + ".bmp";
      if (*rc::gen::arbitrary<bool>()) project.m_Picture.m_Project = "/tmp/" + name;
      if (*rc::gen::arbitrary<bool>())
        project.m_Picture.m_pBytes = std::make_shared<const std::string>(*rc::gen::arbitrary<std::string>());
    }
    return project;
  });
}
