#pragma once

#include <functional>

class CGrid;
class CImageViewUI;

/// Keeps albedo and new illumination up with lights that move, without keeping the mouse waiting: a large picture is
/// first shown by a smaller copy, at the pace of the redraws, and then computed in pieces between events, which the
/// next movement drops.
///
/// The pieces are done by an idle handler of the toolkit, which calls it once between two rounds of events and drawing
/// and sets no timeout for it. So the solver's tick, if there is one, comes as often as the pieces.
class CLiveRelighting {
 public:
  /// Both must outlive the object. `ended` is called with true when all has been computed, and with false where there
  /// is no memory for it.
  CLiveRelighting(CImageViewUI& window, CGrid& grid, std::function<void(bool)> ended);
  ~CLiveRelighting();
  CLiveRelighting(const CLiveRelighting&) = delete;
  CLiveRelighting& operator=(const CLiveRelighting&) = delete;

  /// The lights have changed.
  void Request();
  /// What is still to be done need not be any more.
  void Stop();

 private:
  void Continue();
  void Preview();
  static void cb_Idle(void* live);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  std::function<void(bool)> m_Ended;
  bool m_bIdle = false;     ///< the handler is set
  bool m_bChanged = false;  ///< since the last answer was begun
  double m_fNext = 0.0;     ///< no answer before this time
};
