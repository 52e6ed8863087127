#pragma once

#include <functional>

/// Holds the redraws that a running solver asks for to sixty a second, and to half of the time where drawing takes
/// longer than that: drawing costs more than solving, and nobody sees more. What was asked for last is always drawn.
///
/// No timeout of its own: a redraw that is owed is looked at again each time the toolkit goes round, which it does all
/// the time while the solver ticks.
class CRedrawPacer {
 public:
  /// `redraw` has the view drawn; `isBusy` tells whether more requests are to come, so that an owed redraw may wait;
  /// `now` is the time in seconds, from any start.
  CRedrawPacer(std::function<void()> redraw, std::function<bool()> isBusy, std::function<double()> now);
  ~CRedrawPacer();
  CRedrawPacer(const CRedrawPacer&) = delete;
  CRedrawPacer& operator=(const CRedrawPacer&) = delete;

  /// The redraw follows at once or when the pace allows it; requests until then are one.
  void Request();

  /// Seconds of the monotonic clock.
  static double SteadySeconds();

 private:
  static void cb_Check(void* pacer);
  void RedrawWhenDue();

  std::function<void()> m_Redraw;
  std::function<bool()> m_IsBusy;
  std::function<double()> m_Now;
  double m_fLast = 0.0;     ///< when a redraw was begun last
  double m_fNext;           ///< no redraw before this time
  bool m_bDrawing = false;  ///< one was begun for a running solver, which has asked for none since
  bool m_bOwed = false;
};
