#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "editing/CSurroundings.h"
#include "editing/CUndoSteps.h"
#include "model/CModelState.h"
#include "model/CPendingWork.h"
#include "model/EditObserver.h"

class CGrid;
class CSolverControl;
class HistoryHost;

/// What a step returns to: the document, and where the step replaces the surface, the whole model with what is around
/// it.
struct CStepState {
  CModelState m_Model;
  std::optional<CSurroundings> m_Surroundings;  ///< of a step that replaces the surface

  /// Whether it holds a surface; and its memory.
  bool ReplacesSurface() const { return m_Surroundings.has_value(); }
  std::size_t Bytes() const { return sizeof(*this) + BytesOf(m_Model); }
  /// The depth map.
  CSharedMemory Shared() const;
};

/// What a person has done to the document, step by step, and the way back and forward.
///
/// It listens to the gate for edits. A drag is one step, from the press of the button to its release, and so are keys
/// or turns of the wheel that change the same thing within a second. An edit that leaves the document as it was is
/// none.
class CEditHistory : private EditObserver {
 public:
  static constexpr std::size_t kMostBytes = std::size_t{256} << 20;  ///< of memory for all steps

  /// Both must outlive the history. `seconds` is a clock.
  CEditHistory(HistoryHost& host, CSolverControl& solver, std::function<double()> seconds,
               std::size_t mostBytes = kMostBytes);
  CEditHistory(const CEditHistory&) = delete;
  CEditHistory& operator=(const CEditHistory&) = delete;
  ~CEditHistory() override { Detach(); }

  /// The grid whose document it is; it must outlive the history or its attachment.
  void AttachGrid(CGrid& grid);
  void Detach();

  /// Whether there is a step back, or will be when what waits has been performed; and whether there is one forward.
  bool CanUndo() const;
  bool CanRedo() const { return m_Steps.CanRedo(); }
  /// What these steps are called; empty where nothing is known of them yet.
  std::string UndoName() const { return m_Steps.CanUndo() ? m_Steps.UndoName() : std::string(); }
  std::string RedoName() const { return m_Steps.CanRedo() ? m_Steps.RedoName() : std::string(); }
  const CUndoSteps<CStepState>& Steps() const { return m_Steps; }

  /// Leaves a step for the next tick; nothing during a drag.
  void Request(UserStep step);
  /// Takes it now. Nothing during a drag, and where there is none.
  void Take(UserStep step);
  /// To be called once per round of the toolkit: what a button held has changed is complete once it is no longer
  /// `held`, and a step that a rebuild has made nothing of is forgotten.
  void Settle(bool held);
  /// Forgets all steps.
  void Clear();

 private:
  /// A step under way.
  struct COpenStep {
    Edit m_First;
    CStepState m_Before;
    std::uint64_t m_uRevision;  ///< of the surface
  };
  /// What the latest step has changed, for those that may follow in the same series.
  struct CSeries {
    Edit m_Edit;
    std::uint64_t m_uThing;                        ///< light or point
    std::vector<std::uint32_t> m_auSelectedCells;  ///< after it
    double m_fTime;
  };

  void BeforeEdit(Edit edit) override;
  void AfterEdit(Edit edit) override;
  void GestureBegins() override;
  void GestureEnds() override;

  void Open(Edit edit);
  void Close(bool typed);
  CStepState Present(bool whole, bool work) const;
  bool Continues(const COpenStep& step, const std::optional<CSeries>& series) const;
  std::optional<CSeries> SeriesOf(const COpenStep& step, const CDocument& after) const;
  void DropEmptySteps();
  bool Restore(const CStepState& state);

  HistoryHost& m_Host;
  CSolverControl& m_Solver;
  std::function<double()> m_Seconds;
  CGrid* m_pGrid = nullptr;
  CUndoSteps<CStepState> m_Steps;
  std::optional<COpenStep> m_Open;
  std::optional<CSeries> m_Series;
  int m_iDepth = 0;           ///< of edits within edits
  bool m_bGesture = false;    ///< a button has hold of something
  bool m_bUnsettled = false;  ///< the latest step may still come to nothing
};
