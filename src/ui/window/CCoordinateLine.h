#pragma once

#include <string>

#include <FL/Fl_Box.H>

#include "base/CPlanePoint.h"

class CGrid;

/// The line below the views that says what lies under the mouse (see DescribePlace). No event reaches it.
class CCoordinateLine : public Fl_Box {
 public:
  /// Hidden, without a place.
  CCoordinateLine();

  /// Shows what is at a place, model units; null for nothing. It is drawn again only where the text is another one.
  void Show(const CGrid& grid, const CPlanePoint* place);

 private:
  std::string m_Text;
  std::string m_Next;  ///< memory for the text that is made
};
