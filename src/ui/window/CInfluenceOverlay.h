#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "constraints/CCntrCtrl.h"
#include "editing/CBackgroundTask.h"
#include "insight/CInfluence.h"
#include "report/TargetChanges.h"
#include "ui/window/CMenuOverlay.h"

struct CPtCstr;

/// What one unit more of the selected constraint would do to every height: of a height 1; of a slope 1 of dz/dx or,
/// where the entry is chosen once more, of dz/dy; of a curve with auto bump a degree of its orientation.
///
/// It is worked out beside the window, in a thread of its own, which has copies of all that it needs; what those take
/// is done in steps, one for each time that it is asked. It is kept as long as selection and model stay.
class CInfluenceOverlay : public CMenuOverlay {
 public:
  /// `wantsSlope` is whether a record that fixes height and slope is taken for a slope; `tell` says a line to the user.
  struct CWindow {
    std::function<bool()> m_WantsSlope;
    std::function<void(const std::string& text)> m_Tell;
  };

  /// The grid and the menu must outlive the object.
  CInfluenceOverlay(CMainMenu& menu, CGrid& grid, CWindow window);
  ~CInfluenceOverlay() override;
  CInfluenceOverlay(const CInfluenceOverlay&) = delete;
  CInfluenceOverlay& operator=(const CInfluenceOverlay&) = delete;

  std::shared_ptr<const COverlay> Update() override;
  bool IsBusy() const override;
  void MakeAnew() override { m_Shown.reset(); }
  bool ShowsMore() override;
  void Begin() override;
  void End() override;

 private:
  /// The steps, in their order. Each but `Solve` takes a fraction of the time that a user notices.
  enum class Step { Targets, System, Solve, Done };
  /// What is worked out, which belongs to the thread until that has ended.
  struct CWork {
    CWork(const CGrid& grid, std::span<const double> change, std::optional<CSettler> settler);
    bool m_bSettled;
    CInfluence m_Influence;
    std::vector<double> m_afHeights;
    std::atomic<bool> m_bStop = false;  ///< nobody wants it any more
  };
  /// What it is the influence of.
  struct CSubject {
    const CPtCstr* m_pPoint = nullptr;  ///< never looked into later: it may be gone
    CurveId m_Curve = CurveId::kNone;
    ConstraintPart m_Part = ConstraintPart::Height;
    std::uint64_t m_uTree = 0;
    std::uint64_t m_uEdits = 0;
    bool m_bSettling = false;
    bool operator==(const CSubject&) const = default;
  };

  CSubject Selected() const;
  bool HasAutoBump(CurveId curve) const;
  std::shared_ptr<const COverlay> Start(const CSubject& subject);
  void FindTargets();
  void TakeSystem();
  static bool WorkOut(CWork& work);
  void Forget();
  static void cb_Done(int descriptor, void* overlay);
  COverlay Titled() const;
  std::shared_ptr<const COverlay> Result();
  std::shared_ptr<const COverlay> NoRoom();
  std::shared_ptr<const COverlay> Only(const char* title);

  CGrid& m_Grid;
  CWindow m_Window;
  ConstraintPart m_Slope = ConstraintPart::SlopeX;
  std::optional<CSubject> m_Shown;
  Step m_Step = Step::Done;
  std::vector<double> m_afChange;  ///< of the targets
  std::shared_ptr<CWork> m_pWork;
  CBackgroundTask m_Task;  ///< one that nobody wants may still be under way
};
