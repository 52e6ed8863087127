#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/gui/ImageViewTest.h"

inline const std::string kPushLine = "CImageView::HandleCurveCstr\t\t\tFL_PUSH\n";

/// The image view in curve mode.
class CurveEditingTest : public ImageViewTest {
 protected:
  CurveEditingTest() {
    Attach();
    View().SetMode(EditingMode::Curve);
    Settle();
  }
  // Nothing is pending or remembered afterwards.
  void Settle() {
    Grid().PerformPendingWork();
    TakeConsole();
    m_Host = {};
  }
  CCntrCtrlList& Curves() { return CStaging::Constraints(Grid()).Curves(); }
  CCntrCtrl& Curve(int place = 0) { return CurveAt(Curves(), place); }
  void Add(const CPlaces& places, CurveType type = kTear, bool closed = false) {
    Grid().AddCurve(PointsAt(places), type, closed);
    Settle();
  }
  void Click(double x, double y, int button = FL_LEFT_MOUSE) {
    Push(button, x, y);
    Release(button);
  }
  // Two points of a curve of the type, and the mouse somewhere else.
  void Begin(CurveType type = kTear) {
    View().SetCurveType(type);
    Click(20.5, 20.5);
    Click(60.5, 20.5);
    Move(60.5, 70.5);
  }
  std::size_t Pending() { return Grid().Constraints().PendingCurve().Points().size(); }
  bool IsIdle() { return Grid().Constraints().PendingCurve().IsIdle(); }
  void ExpectPlaces(const CPlaces& places, const CPlaces& actual) {
    ASSERT_EQ(actual.size(), places.size());
    for (std::size_t k = 0; k < places.size(); ++k) {
      EXPECT_NEAR(actual[k][0], places[k][0], 1e-9) << k;
      EXPECT_NEAR(actual[k][1], places[k][1], 1e-9) << k;
    }
  }
};

inline const CPlaces kBent{{20.5, 20.5}, {60.5, 20.5}, {60.5, 70.5}};
