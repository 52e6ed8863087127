#include "ui/window/COverlays.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <FL/Fl.H>

#include "drawing/COverlay.h"
#include "ui/seams/OverlaySource.h"

namespace {

constexpr double kLeastPause = 0.2;
constexpr double kShare = 4;  // of pauses to work

}  // namespace

COverlays::COverlays(std::function<void(std::shared_ptr<const COverlay>)> show, std::function<double()> now)
    : m_Show(std::move(show)), m_Now(std::move(now)) {}

COverlays::~COverlays() {
  Fl::remove_timeout(cb_Wake, this);
  Fl::remove_idle(cb_Wake, this);
}

void COverlays::Show(OverlaySource* source) {
  if (source == m_pSource) return;
  OverlaySource* before = std::exchange(m_pSource, source);
  m_fNext = -std::numeric_limits<double>::infinity();
  if (source != nullptr) source->Begin();
  if (before != nullptr) before->End();
  // Until there is something to show.
  m_Show(nullptr);
  Follow();
}

void COverlays::Hide(const OverlaySource& source) {
  if (m_pSource == &source) Show(nullptr);
}

void COverlays::Follow() {
  Ask();
  // The toolkit does not wait for events while there is something to work out.
  const bool busy = m_pSource != nullptr && m_pSource->IsBusy();
  if (busy == (Fl::has_idle(cb_Wake, this) != 0)) return;
  if (busy) {
    Fl::add_idle(cb_Wake, this);
  } else {
    Fl::remove_idle(cb_Wake, this);
  }
}

void COverlays::Ask() {
  if (m_pSource == nullptr) return;
  const double began = m_Now();
  if (began < m_fNext && !m_pSource->IsBusy()) {
    // The toolkit may have nothing else to go round for.
    if (Fl::has_timeout(cb_Wake, this) == 0) Fl::add_timeout(m_fNext - began, cb_Wake, this);
    return;
  }
  std::shared_ptr<const COverlay> overlay = m_pSource->Update();
  if (overlay == nullptr) return;
  m_Show(std::move(overlay));
  const double ended = m_Now();
  const double share = m_pSource->FollowsEditsAlone() ? 0.0 : kShare * (ended - began);
  m_fNext = ended + std::max(kLeastPause, share);
}

// Going round is all that is needed.
void COverlays::cb_Wake(void* /*data*/) {}
