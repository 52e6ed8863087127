#pragma once

#include <memory>
#include <vector>

#include "report/CSavedSurface.h"
#include "ui/window/CInfluenceOverlay.h"

class CGrid;
class COverlays;

/// The overlays that entries of the menu show.
class COverlayEntries {
 public:
  /// All of them must outlive the object.
  COverlayEntries(CGrid& grid, CMainMenu& menu, COverlays& overlays, CInfluenceOverlay::CWindow window);
  ~COverlayEntries();
  COverlayEntries(const COverlayEntries&) = delete;
  COverlayEntries& operator=(const COverlayEntries&) = delete;

  /// The user has chosen an entry, whose tick has changed; false where it shows no overlay.
  bool Chosen(MenuEntry entry);

  /// A file has the surface as it is now.
  void SurfaceSaved();
  /// The surface is that of another model, of which no file is known.
  void SurfaceReplaced();
  /// To be called once per round of the toolkit.
  void Follow();

 private:
  void MakeAnew();

  CGrid& m_Grid;
  CMainMenu& m_Menu;
  COverlays& m_Overlays;
  CSavedSurface m_Saved;
  bool m_bTakeDue = false;  ///< the surface is to be kept as soon as it is whole
  std::vector<std::unique_ptr<CMenuOverlay>> m_apEntries;
};
