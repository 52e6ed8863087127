#pragma once

#include <array>

/// Red, green and blue, 0 to 1.
using CColour = std::array<double, 3>;

/// How one of the two views draws the grid and the point constraints. Thicknesses in pixels.
struct CViewDrawing {
  float m_fGridThickness;
  float m_fNormalRadius;  ///< of the disc of a normal constraint
  float m_fPositionSize;  ///< of the cross of a position constraint
  float m_fUnselectedPositionThickness;
  float m_fHighlightedPositionThickness;
  float m_fUnselectedNormalThickness;
  float m_fSelectedNormalThickness;
};

/// The colours of point constraints by their state.
struct CConstraintColours {
  CColour m_Unselected;
  CColour m_Highlighted;
  CColour m_Selected;
};

/// What the drawing options change, read by both views at every redraw.
struct CDrawingSettings {
  CViewDrawing m_ImageView{1.0F, 2.5F, 4.0F, 3.5F, 4.5F, 3.5F, 2.5F};
  CViewDrawing m_ModelView{1.5F, 4.0F, 5.0F, 2.5F, 3.5F, 5.0F, 3.5F};
  CConstraintColours m_PositionColours{{1, 1, 0}, {0, 0, 1}, {0, 1, 0}};
  CConstraintColours m_NormalColours{{1, 0, 0}, {0, 0, 1}, {0, 1, 0}};
  std::array<float, 4> m_afBackground{0, 0, 0, 0};  ///< RGBA clear colour of both views
  CColour m_GreyGrid{0.5, 0.5, 0.5};                ///< grid lines, unless levels have colours of their own
  bool m_bSpecificSubdivisionColours = false;       ///< grid lines coloured by the level of their cell
};

inline CDrawingSettings g_DrawingSettings;
