#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <span>

#include "constraints/CCntrCtrl.h"

/// Curves in creation order, with the rules by which clicks and keys highlight, select, move and delete them.
///
/// Nothing here knows the surface or the solver. `reach` is as for CPtCstrList; masks are CurveType bits, and a curve
/// is of a mask's type when it has one of its bits. Addresses of curves stay valid until the curve is deleted.
class CCntrCtrlList {
 public:
  using iterator = std::list<CCntrCtrl>::iterator;
  using const_iterator = std::list<CCntrCtrl>::const_iterator;

  /// A node of a curve; both null where nothing was hit.
  struct CHit {
    const CCntrCtrl* m_pCurve = nullptr;
    const CCntrNode* m_pNode = nullptr;
  };

  iterator begin() { return m_aCurves.begin(); }
  iterator end() { return m_aCurves.end(); }
  const_iterator begin() const { return m_aCurves.begin(); }
  const_iterator end() const { return m_aCurves.end(); }
  std::size_t size() const { return m_aCurves.size(); }
  bool empty() const { return m_aCurves.empty(); }
  void clear() { m_aCurves.clear(); }
  CCntrCtrl& back() { return m_aCurves.back(); }
  const CCntrCtrl& back() const { return m_aCurves.back(); }

  /// Appends an empty curve and returns it.
  CCntrCtrl& Add() { return m_aCurves.emplace_back(); }
  /// Appends a curve through copies of the points, without state and with all weights 0. Fewer than three points make
  /// an open curve.
  CCntrCtrl& Add(std::span<const CPtCstr> points, CurveType type, bool closed);
  /// Deletes the curves of fewer than two nodes, which have no segment.
  void RemoveDegenerate();

  /// Sets the highlight bit of every node within reach, on curves of the type, and of every curve that has such a node;
  /// clears it on all others. Whether any was set.
  bool Highlight(double x, double y, CurveType mask, double reach);
  /// Click selection by the rule of CSelectionStepper, at two levels: over the nodes within reach of all curves of the
  /// type, and over those curves that have one. Everything else is unselected. The curve selected, or null.
  CCntrCtrl* Pick(double x, double y, CurveType mask, double reach);
  /// The first node within reach on the first curve that has one.
  CHit Find(double x, double y, double reach) const;
  /// The curve with that id; null if it is gone.
  CCntrCtrl* Find(CurveId id);
  const CCntrCtrl* Find(CurveId id) const;
  /// The first selected node of the curves, and its curve.
  CHit SelectedNode() const;
  /// Selects a curve and its node, both by number, and nothing else; no node, or nothing, for a number that there is
  /// none of.
  void SelectNumber(std::size_t curve, std::size_t node);
  /// Moves the node that SelectedNode finds to a place.
  void PlaceSelectedNode(double x, double y);
  /// The first selected curve; null if there is none.
  CCntrCtrl* FirstSelected();
  /// Moves every selected node of every curve of the type.
  void MoveSelected(double dx, double dy, CurveType mask);
  /// Deletes the first selected node of every curve.
  void DeleteSelectedNodes();
  /// Deletes the first selected curve.
  void DeleteSelected();
  /// Unselects the nodes of the curves of the type, and every curve.
  void Unselect(CurveType mask);

  /// The same curves in the same order (see CCntrCtrl).
  bool operator==(const CCntrCtrlList&) const = default;

 private:
  std::list<CCntrCtrl> m_aCurves;
};
