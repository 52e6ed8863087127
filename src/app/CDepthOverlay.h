#pragma once

#include <memory>

#include "ui/seams/OverlaySource.h"

class CDepthMap;
class CGrid;
class CImageViewUI;

/// The reference depth in colours over the photograph. Pixels without a value show their neighbours'.
class CDepthOverlay : public OverlaySource {
 public:
  /// Both must outlive the object.
  CDepthOverlay(CImageViewUI& window, const CGrid& grid) : m_Window(window), m_Grid(grid) {}

  /// Whether it is the overlay that is shown; nothing is without a map.
  bool IsShown() const;
  void Show(bool shown);
  /// To be called after whatever may have changed the model: a map that has gone is shown no more.
  void Follow();

  std::shared_ptr<const COverlay> Update() override;
  void Begin() override { m_bDue = true; }

 private:
  CImageViewUI& m_Window;
  const CGrid& m_Grid;
  bool m_bDue = false;
  std::shared_ptr<const CDepthMap> m_pShown;  ///< with
  bool m_bZeroIsUnknown = false;              ///< this meaning of 0
};
