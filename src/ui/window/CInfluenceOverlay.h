#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "constraints/CCntrCtrl.h"
#include "insight/CInfluence.h"
#include "report/TargetChanges.h"
#include "ui/window/CMenuOverlay.h"

struct CPtCstr;

/// What one unit more of the selected constraint would do to every height: of a height 1; of a slope 1 of dz/dx or,
/// where the entry is chosen once more, of dz/dy; of a curve with auto bump a degree of its orientation.
///
/// It is worked out in steps, one for each time that it is asked, and kept as long as selection and model stay.
class CInfluenceOverlay : public CMenuOverlay {
 public:
  /// `wantsSlope` is whether a record that fixes height and slope is taken for a slope; `tell` says a line to the user.
  struct CWindow {
    std::function<bool()> m_WantsSlope;
    std::function<void(const std::string& text)> m_Tell;
  };

  /// The grid and the menu must outlive the object.
  CInfluenceOverlay(CMainMenu& menu, CGrid& grid, CWindow window);

  std::shared_ptr<const COverlay> Update() override;
  bool IsBusy() const override { return m_Step != Step::Done; }
  void MakeAnew() override { m_Shown.reset(); }
  bool ShowsMore() override;
  void Begin() override;
  void End() override;

 private:
  /// The steps, in their order. Each takes a fraction of the time that a user notices.
  enum class Step { Targets, System, Solve, Done };
  /// What it is the influence of.
  struct CSubject {
    const CPtCstr* m_pPoint = nullptr;  ///< never looked into later: it may be gone
    CurveId m_Curve = CurveId::kNone;
    ConstraintPart m_Part = ConstraintPart::Height;
    std::uint64_t m_uTree = 0;
    std::uint64_t m_uEdits = 0;
    bool operator==(const CSubject&) const = default;
  };

  CSubject Selected() const;
  bool HasAutoBump(CurveId curve) const;
  std::shared_ptr<const COverlay> Start(const CSubject& subject);
  void FindTargets();
  COverlay Titled() const;
  std::shared_ptr<const COverlay> Result();
  std::shared_ptr<const COverlay> Only(const char* title);

  CGrid& m_Grid;
  CWindow m_Window;
  ConstraintPart m_Slope = ConstraintPart::SlopeX;
  std::optional<CSubject> m_Shown;
  Step m_Step = Step::Done;
  std::vector<double> m_afChange;  ///< of the targets
  std::unique_ptr<CInfluence> m_pInfluence;
};
