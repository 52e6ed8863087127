#include "app/CTearSuggestions.h"

#include <new>
#include <utility>
#include <vector>

#include "constraints/CCntrCtrlList.h"
#include "model/CGrid.h"
#include "scissors/CTopDownImage.h"
#include "ui/imageview/CImageView.h"
#include "ui/seams/CBusyCursor.h"
#include "ui/window/CImageViewUI.h"

namespace {

// As the curve that is made of it.
CTearProposal Simplified(const CTearProposal& tear, const CLattice& lattice) {
  CCntrCtrlList curves;
  CCntrCtrl& curve = curves.Add(NodesOf(tear), CurveType::kPosition, tear.m_bClosed);
  curve.Simplify(lattice);
  CTearProposal simplified;
  simplified.m_bClosed = tear.m_bClosed;
  for (const CCntrNode& node : curve.Nodes()) simplified.m_aPoints.push_back({node.m_fX, node.m_fY});
  return simplified;
}

}  // namespace

// They take longer than all the rest, and each move of the slider asks for tears.
const CLinkCosts* CTearSuggestions::Costs() {
  const CTextureImages& textures = m_Grid.Relighting().Textures();
  if (!textures.HasPicture()) return nullptr;
  if (!m_Costs.has_value()) m_Costs = ComputeLinkCosts(CopyPhotograph(textures));
  return &*m_Costs;
}

void CTearSuggestions::Suggest(const CTearWishes& wishes) {
  const CGridReference& reference = m_Grid.Reference();
  if (!reference.HasMap()) return;
  const CExtent& extent = m_Grid.Surface().Lattice().Extent();
  try {
    const CBusyCursor busy;
    std::vector<CTearProposal> tears = SuggestTears(reference.Reading(), wishes, extent, Costs());
    for (CTearProposal& tear : tears) tear = Simplified(tear, m_Grid.Surface().Lattice());
    m_Proposals.Set(std::move(tears));
  } catch (const std::bad_alloc&) {
    Drop();
    m_Costs.reset();
    return m_Window.Notice("There is not enough memory to look for tears.");
  }
  m_bShown = true;
  m_pMap = reference.Value().m_pMap;
  m_Extent = extent;
  m_Window.ImageView().ShowProposals(&m_Proposals);
}

void CTearSuggestions::Take() {
  if (m_Proposals.TakenCount() > 0) {
    m_Grid.Gate().Do(Edit::AddCurve, [&] {
      for (const CTearProposals::CItem& item : m_Proposals.Items()) {
        if (item.m_bTaken) m_Grid.CurveEdits().Add(NodesOf(item.m_Tear), CurveType::kPosition, item.m_Tear.m_bClosed);
      }
    });
    m_Window.RequestRedraw();
  }
  Drop();
}

void CTearSuggestions::Drop() {
  if (!m_bShown) return;
  m_bShown = false;
  m_Window.ImageView().ShowProposals(nullptr);
  m_Proposals.Clear();
  m_Costs.reset();
  m_pMap.reset();
}

void CTearSuggestions::Follow() {
  if (!m_bShown) return;
  if (m_Grid.Reference().Value().m_pMap != m_pMap || !(m_Grid.Surface().Lattice().Extent() == m_Extent)) Drop();
}

CTearFields::CState CTearSuggestions::State() const {
  return {m_Grid.Reference().HasMap(), m_bShown, m_Proposals.Items().size(), m_Proposals.TakenCount()};
}
