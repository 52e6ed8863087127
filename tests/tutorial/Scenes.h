#pragma once

#include <string>
#include <vector>

#include "support/gui/CScreenshot.h"

/// A height constraint: a place on the photograph and the height there, in model units above the table or the wall.
struct CHeight {
  CPixel m_Place;
  int m_iHeight = 0;
};

/// A curve drawn by hand, in pixels of the photograph.
struct CStroke {
  char m_chType = 'p';  ///< the key of its type: p, n or f
  bool m_bClosed = false;
  std::vector<CPixel> m_aNodes;
};

/// A contour traced with the scissors: the key points that are clicked, in pixels of the photograph.
struct CTrace {
  bool m_bClosed = false;
  std::vector<CPixel> m_aKeyPoints;
};

/// All that is put on a photograph to make a model of it.
struct CScene {
  std::string m_Picture;  ///< file among the samples
  int m_iWidth = 0;
  int m_iHeight = 0;
  std::vector<CStroke> m_aCreases;  ///< drawn first: a click close to a curve would select it
  std::vector<CTrace> m_aTears;
  std::vector<CHeight> m_aHeights;
  std::vector<CPixel> m_aUpright;  ///< normal constraints that are left as they come, straight up
};

/// The cup in the few strokes and clicks of the README.
CScene FirstScene();
CScene CoffeeScene();
CScene CatScene();
/// The cat of a depth map: three heights, and no curves.
CScene CatWithDepthScene();
