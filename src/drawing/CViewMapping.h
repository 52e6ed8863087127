#pragma once

#include "base/CPlanePoint.h"
#include "lattice/CLattice.h"

/// Which part of the model rectangle the image view shows, and the way from its pixels to the plane and back.
///
/// The zoom is the process-wide `g_fZoom`: the share of the extent that is shown, about the middle of the extent moved
/// by the pan (model units). At zoom 1 without pan the extent fills the view exactly, so that x and y may have
/// different scales.
class CViewMapping {
 public:
  /// The rectangle of the model, model units.
  void SetExtent(const CExtent& extent) { m_Extent = extent; }
  /// Of the view, in pixels; both above 0.
  void SetSize(int width, int height);

  /// Whether x and y are to have one scale.
  void KeepProportions(bool keep) { m_bProportional = keep; }

  /// The rectangle of the model, whatever the zoom.
  const CExtent& Extent() const { return m_Extent; }
  /// What the view shows.
  CExtent Visible() const;
  /// The place under the centre of pixel (x, y).
  CPlanePoint ToModel(double x, double y) const;
  /// The same without the pan.
  CPlanePoint ToModelUnpanned(double x, double y) const;
  /// The nearest place where a constraint may lie: off the border by 0.1, or a tenth of a small extent.
  CPlanePoint Clamped(const CPlanePoint& place) const;
  /// Whether the place lies in the picture, which covers the whole extent, its border included.
  bool IsInside(const CPlanePoint& place) const;

  /// Zoom for a mouse movement in pixels (y downwards): right and up show more, left and down show less, by half a per
  /// cent per pixel and at most 20 pixels at a time. Stops where rounding would spoil the mapping.
  static void Zoom(int dx, int dy);
  /// Multiplies the zoom, as far as it goes, and moves the pan so that the place under the centre of pixel (x, y)
  /// stays.
  void ZoomAbout(double factor, double x, double y);
  /// Moves the pan.
  void Pan(double dx, double dy);
  const CPlanePoint& PanNow() const { return m_Pan; }
  /// Zoom and pan as they were somewhere else; the zoom is held to what can be reached here.
  void Set(double zoom, const CPlanePoint& pan);
  /// Zoom and pan as at the start.
  void Reset();

 private:
  /// Half of what the view shows.
  CPlanePoint HalfSizes() const;
  CPlanePoint ToModelPanned(double x, double y, const CPlanePoint& pan) const;

  CExtent m_Extent;
  int m_iWidth = 1;
  int m_iHeight = 1;
  CPlanePoint m_Pan;
  bool m_bProportional = false;
};
