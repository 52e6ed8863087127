#pragma once

#include <cstddef>
#include <span>

#include "constraints/CCntrCtrl.h"
#include "constraints/CContourAttributes.h"

class CConstraints;
class CEditGate;
class CSurface;
class CWantedSubdivisions;

/// What a user does to the curves of a model, finished or in progress: each edit changes the list, posts what it has
/// made out of date and has what has changed shown. Unless something is said of it, nothing is posted.
///
/// Masks are CurveType bits, `reach` is as for CPtCstrList.
class CCurveEdits {
 public:
  /// How the curve in progress ended.
  enum class Validation {
    NeedsType,  ///< it is still in progress: no type has been chosen
    Dropped,    ///< fewer than two points make no curve
    Added,
  };

  /// All of them must outlive the edits.
  CCurveEdits(CSurface& surface, CWantedSubdivisions& wanted, CConstraints& constraints, CEditGate& gate)
      : m_Surface(surface), m_Wanted(wanted), m_Constraints(constraints), m_Gate(gate) {}

  /// Appends a curve through the points; without points nothing happens. Fewer than three make an open curve. Posts
  /// kNewCurve.
  void Add(std::span<const CPtCstr> points, CurveType type, bool closed);
  /// The same for a path from texel to texel, of which only the nodes that matter are kept.
  void AddTraced(std::span<const CPtCstr> points, CurveType type, bool closed);
  /// Adds a point to the curve in progress, or begins one with it.
  void AppendPending(double x, double y);
  /// The cursor is at (x, y), away from every finished curve: the one in progress is to close if that is within reach
  /// of its first point.
  void HoverPending(double x, double y, double reach);
  /// Ends the curve in progress at the cursor (x, y) or, if it is to close, at its first point. `close` closes it in
  /// any case. Unless a type is missing, nothing is in progress and nothing selected afterwards.
  Validation ValidatePending(double x, double y, bool close, CurveType type);
  /// Forgets the curve in progress and every selection.
  void CancelPending();

  /// Click selection of a node and its curve (see CCntrCtrlList::Pick); the type of the curve selected, kNone without
  /// one.
  CurveType Pick(double x, double y, CurveType mask, double reach);
  /// Whether a node lies within reach; such nodes and their curves are highlighted, no others.
  bool Highlight(double x, double y, CurveType mask, double reach);
  /// Gives the selected curve another type; nothing for kNone.
  void SetSelectedType(CurveType type);
  void MoveSelected(double dx, double dy, CurveType mask);
  /// Selects a curve and its node by their numbers, and nothing else.
  void SelectNumber(std::size_t curve, std::size_t node);
  /// Moves the first selected node to a place; nothing without one.
  void PlaceSelectedNode(double x, double y);
  /// Deletes the selected node of every curve, or the selected curve. Posts kRebuildMaps in any case.
  void DeleteSelectedNode();
  void DeleteSelected();
  void Unselect(CurveType mask);

  /// Gives a curve the attributes and, unless it is kNone, the type; the weights go to the node of that number or to
  /// all nodes. Posts kRebuildMaps. Nothing for a curve or a node that has gone.
  void SetAttributes(CurveId id, std::size_t node, const CContourAttributes& attributes, CurveType type,
                     bool weightsToAllNodes);
  /// Makes the generated constraints of a curve the user's own, wants full resolution at each of them, and turns the
  /// curve's generation off. Posts kRebuildMaps. False, with nothing changed, if they would be more than
  /// CCntrCtrl::kMostGenerated.
  bool ExportConstraints(CurveId id);
  /// See CConstraints.
  int TakeRefused();

 private:
  void ForgetPending();
  CCntrCtrl& Append(std::span<const CPtCstr> points, CurveType type, bool closed);

  CSurface& m_Surface;
  CWantedSubdivisions& m_Wanted;
  CConstraints& m_Constraints;
  CEditGate& m_Gate;
};
