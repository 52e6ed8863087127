#pragma once

#include <memory>
#include <optional>

#include "lattice/CLattice.h"
#include "reference/CTearProposals.h"
#include "scissors/CLinkCosts.h"
#include "ui/depth/CTearFields.h"

class CDepthMap;
class CGrid;
class CImageViewUI;

/// The tears that the reference depth suggests, as the image view shows them, until they are taken or dropped.
class CTearSuggestions {
 public:
  /// Both must outlive the object.
  CTearSuggestions(CImageViewUI& window, CGrid& grid) : m_Window(window), m_Grid(grid) {}

  /// See ReferenceCommands.
  void Suggest(const CTearWishes& wishes);
  void Take();
  void Drop();
  /// Another photograph is on show.
  void PictureLoaded() { m_Costs.reset(); }
  /// To be called after whatever may have changed the model: tears of a map that it has no more are dropped.
  void Follow();
  CTearFields::CState State() const;

 private:
  const CLinkCosts* Costs();

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CTearProposals m_Proposals;
  bool m_bShown = false;
  std::optional<CLinkCosts> m_Costs;        ///< of the photograph, while tears are shown
  std::shared_ptr<const CDepthMap> m_pMap;  ///< that they are of
  CExtent m_Extent{};                       ///< of the model that they lie on
};
