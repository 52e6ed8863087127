#pragma once

#include <optional>

/// How a key moves a view: it goes a tenth of what it shows to one side, or shows everything.
enum class ViewMove { Left, Right, Up, Down, All };

/// What the toolkit's current key event asks for: Ctrl, and no other modifier, with an arrow or 0; nothing else, and
/// nothing while a button of the mouse is held.
std::optional<ViewMove> TypedViewMove();

/// Of a tenth of the view: where the arrows point, 1 to the right and up.
struct CViewStep {
  double m_fAcross = 0.0;
  double m_fUpwards = 0.0;
};
/// Of a view that shows `width` x `height`, in the same units; 0 for all of it.
CViewStep StepOf(ViewMove move, double width, double height);

/// Whether the toolkit's current wheel event is to zoom a view: with Ctrl. It comes to views, too, that the pointer is
/// not over.
bool IsWheelZoom();
/// Whether the pointer is over the view that the toolkit's current event is given to, `width` x `height` pixels.
bool IsPointerIn(int width, int height);
/// By how much more a view shows after the wheel's current event; nothing where it is to stay: while a button of the
/// mouse is held, or where the wheel was moved sideways.
std::optional<double> WheelZoomFactor();
