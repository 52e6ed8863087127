#pragma once

#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/gui/ImageViewTest.h"

/// The image view in a mode of editing, over a ramp.
class EditingTest : public ImageViewTest {
 protected:
  explicit EditingTest(EditingMode mode) {
    SetSurface(Grid(), CRamp{0.25, -0.5, 4});
    Attach();
    View().SetMode(mode);
    Settle();
  }
  CPtCstrList& List() { return CStaging::Constraints(Grid()).Points(); }
  CPtCstr& At(int place) { return RecordAt(List(), place); }
  void Add(const CPtCstr& record) {
    Grid().AddPtCstr(record);
    Settle();
  }
  // Nothing is pending afterwards.
  void Settle() {
    Grid().PerformPendingWork();
    TakeConsole();
    m_Host = {};
  }
  static void ExpectPlace(const CPtCstr& c, double x, double y) {
    EXPECT_NEAR(c.m_fX, x, 1e-9);
    EXPECT_NEAR(c.m_fY, y, 1e-9);
  }
  static double Ramp(double x, double y) { return CRamp{0.25, -0.5, 4}(x, y); }
};
