#pragma once

#include <functional>
#include <memory>

class OverlaySource;
struct COverlay;

/// The overlays of the image view, of which at most one is shown: beginning one ends the one before.
///
/// The source of the one that is shown is asked once per round of the toolkit, but after an answer not before a fifth
/// of a second has passed, and four times as long as the answer took: the solver must not wait for colours. For those
/// that follow edits alone a fifth of a second is enough, as these come by hand. One that is still at work is asked in
/// every round.
class COverlays {
 public:
  /// `show` brings an overlay, or null for none, to the view; `now` is the time in seconds, from any start.
  COverlays(std::function<void(std::shared_ptr<const COverlay>)> show, std::function<double()> now);
  ~COverlays();
  COverlays(const COverlays&) = delete;
  COverlays& operator=(const COverlays&) = delete;

  /// Shows what a source makes, which must live as long as it is shown; null for none.
  void Show(OverlaySource* source);
  /// Ends it, if it is the one that is shown.
  void Hide(const OverlaySource& source);
  const OverlaySource* Shown() const { return m_pSource; }
  /// To be called once per round of the toolkit.
  void Follow();

 private:
  void Ask();
  static void cb_Wake(void* data);

  std::function<void(std::shared_ptr<const COverlay>)> m_Show;
  std::function<double()> m_Now;
  OverlaySource* m_pSource = nullptr;
  double m_fNext = 0.0;  ///< it is not asked before this time
};
