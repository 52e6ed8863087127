#pragma once

class CEditGate;
class CGridRun;
class CSurface;
class CWantedSubdivisions;

/// What a user does to the wanted subdivision by hand. Selecting cells is no edit; places are in model units.
class CCellEdits {
 public:
  /// All of them must outlive the edits.
  CCellEdits(CSurface& surface, CWantedSubdivisions& wanted, CGridRun& run, CEditGate& gate)
      : m_Surface(surface), m_Wanted(wanted), m_Run(run), m_Gate(gate) {}

  /// Wants full resolution at a place. Posts kRebuildMaps.
  void RefineAt(double x, double y);
  /// Selects the leaves that meet the rectangle between two opposite corners.
  void Select(double x0, double y0, double x1, double y1);
  void ClearSelection();
  /// Brings the cells' marks up to the selection.
  void ShowSelection();
  /// Leave the next tick a split (kSubdivide), or a merge (kMerge), of what is selected by then.
  void SplitSelected();
  void MergeSelected();

 private:
  CSurface& m_Surface;
  CWantedSubdivisions& m_Wanted;
  CGridRun& m_Run;
  CEditGate& m_Gate;
};
