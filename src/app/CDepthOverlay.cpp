#include "app/CDepthOverlay.h"

#include <new>
#include <utility>

#include "drawing/COverlay.h"
#include "model/CGrid.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr double kHalf = 0.5;

}  // namespace

bool CDepthOverlay::IsShown() const { return m_Window.Overlays().Shown() == this; }

void CDepthOverlay::Show(bool shown) {
  if (!shown) {
    m_pShown.reset();
    return m_Window.Overlays().Hide(*this);
  }
  if (m_Grid.Reference().HasMap()) m_Window.Overlays().Show(this);
}

void CDepthOverlay::Follow() {
  if (!m_Grid.Reference().HasMap()) Show(false);
  // Or a map that the model has no more would live on.
  if (!IsShown()) m_pShown.reset();
}

std::shared_ptr<const COverlay> CDepthOverlay::Update() {
  const CGridReference& reference = m_Grid.Reference();
  const bool zero = reference.Value().m_Settings.m_bZeroIsUnknown;
  const bool same = m_pShown == reference.Value().m_pMap && m_bZeroIsUnknown == zero;
  if (!reference.HasMap() || (!std::exchange(m_bDue, false) && same)) return nullptr;
  m_pShown = reference.Value().m_pMap;
  m_bZeroIsUnknown = zero;
  const CDepthReading& reading = reference.Reading();
  COverlay overlay;
  overlay.m_Title = "Depth map";
  overlay.m_fLow = reading.Low();
  overlay.m_fHigh = reading.High();
  overlay.m_fOpacity = kHalf;
  try {
    overlay.m_Raster = {reading.Width(), reading.Height(), reading.Filled()};
  } catch (const std::bad_alloc&) {
    overlay.m_Title = "Not enough memory";
    overlay.m_bHasBar = false;
  }
  return std::make_shared<const COverlay>(std::move(overlay));
}
