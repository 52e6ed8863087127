#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

class CConstraints;
class CEditGate;
struct CExtent;
struct CPtCstr;

/// What a user does to the point constraints of a model: each edit changes the list, posts what it has made out of date
/// and has what has changed shown. Adding and deleting post Operation::kRebuild, changing kRestart, selecting nothing.
///
/// Masks are PtCstrKind bits, `reach` is as for CPtCstrList. Operations on "the selected" one take the first and do
/// nothing without one.
class CPtCstrEdits {
 public:
  /// Both must outlive the edits.
  CPtCstrEdits(CConstraints& constraints, CEditGate& gate) : m_Constraints(constraints), m_Gate(gate) {}

  /// Appends a copy of the record and posts a rebuild.
  void Add(const CPtCstr& record);
  /// The same for several heights along a curve, as one edit; nothing without any. `asked`: the last of those that were
  /// asked for, where they are not those of the surface.
  void AddAlongCurve(std::span<const CPtCstr> heights, std::optional<double> asked);
  /// Whether any constraint of the kind lies within reach of (x, y); those that do are highlighted, no others.
  bool Highlight(double x, double y, std::uint32_t mask, double reach);
  void Select(double x, double y, std::uint32_t mask, double reach);
  void SelectNext(std::uint32_t mask);
  void SelectPrev(std::uint32_t mask);
  /// Selects one of the list by its number, and none of the others.
  void SelectNumber(std::size_t number);
  void MoveSelected(double dx, double dy);
  /// Moves it to a place.
  void PlaceSelected(double x, double y);
  /// 0 without a selected position constraint.
  double SelectedHeight() const;
  void SetSelectedHeight(double z);
  /// The height that was asked for last, by whatever edit; none until there has been one in this model. Where the
  /// surface gives it, as for a new constraint, nobody has asked.
  std::optional<double> LastHeight() const { return m_LastHeight; }
  /// The model is another one, with this height or none.
  void SetLastHeight(std::optional<double> z) { m_LastHeight = z; }
  /// Adds to the slopes of the selected normal constraint. Posts kRestart even without one.
  void ChangeSelectedNormal(double dp, double dq);
  /// Gives it these slopes; nothing without a selected normal constraint.
  void SetSelectedNormal(double p, double q);
  void DeleteSelected();

  /// The group (see CPtCstrList). Choosing it is no edit.
  void ChooseIn(const CExtent& box);
  bool ToggleChosen(double x, double y, double reach);
  void ClearChosen();
  /// Gives each of the group the height that `height` makes of its own, as one edit; nothing without a group.
  void ChangeChosenHeights(const std::function<double(double z)>& height);
  void DeleteChosen();

 private:
  CConstraints& m_Constraints;
  CEditGate& m_Gate;
  std::optional<double> m_LastHeight;
};
