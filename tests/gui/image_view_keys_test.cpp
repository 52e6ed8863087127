// Every key, click and drag in the image view, tried out and compared with the list that the user reads.

#include <sstream>
#include <string>
#include <vector>

#include "support/CStaging.h"
#include "support/FileBuilders.h"
#include "support/KeyTable.h"
#include "support/gui/ImageViewTest.h"

namespace {

// What lies where: something to take hold of, and nothing but a point in use.
constexpr CPlanePoint kSomething{50.5, 50.5};
constexpr CPlanePoint kNothing{25.5, 74.5};
constexpr CPlanePoint kDragStep{12, 6};

class ImageViewKeysTest : public ImageViewTest {
 protected:
  ImageViewKeysTest() { Attach(); }

  // An empty model in a view as at the start.
  void Clear(EditingMode mode, std::uint32_t debugFlags = 0) {
    Grid().Initialize(2, false, 0, 0, 100, 100);
    Grid().CurveEdits().CancelPending();
    View().SetDebugFlags(debugFlags);
    Grid().CellEdits().ClearSelection();
    View().SetMode(mode);
    View().ResetView();
    Grid().PerformPendingWork();
    TakeConsole();
    m_Host = {};
    m_Host.m_bDebugZone = true;
  }
  void SetUpPoints(EditingMode mode) {
    Clear(mode);
    const std::uint32_t kind = mode == EditingMode::Position ? PtCstrKind::kPosition : PtCstrKind::kNormal;
    // With three of them the next one and the previous one differ.
    for (const CPlanePoint& place : {kSomething, CPlanePoint{80.5, 20.5}, CPlanePoint{80.5, 80.5}})
      Grid().AddPtCstr({place.x, place.y, kind, 3});
    Settle();
  }
  // Two positions, of which one lies within the drags; in a mode that has nothing to do with them.
  void SetUpGroup() {
    Clear(EditingMode::Normal);
    View().SetChoosing(true);
    for (const CPlanePoint& place : {kSomething, CPlanePoint{30.5, 77.5}})
      Grid().AddPtCstr({place.x, place.y, PtCstrKind::kPosition, 3});
    Settle();
  }
  // A torn curve, and the type of new ones is another.
  void SetUpCurve() {
    Clear(EditingMode::Curve);
    View().SetCurveType(CurveType::kFairness);
    AddCurveThrough(Grid(), CurveType::kPosition, {{30, 50.5}, {kSomething.x, kSomething.y}, {70, 50.5}});
    Settle();
  }
  void Settle() {
    Grid().PerformPendingWork();
    TakeConsole();
  }

  /// Everything that a user could notice, as a text.
  std::string State() {
    std::ostringstream out;
    out << GridText(Grid()) << CodeOf(Grid().Run().NextOperation()) << ' ' << g_fZoom << ' '
        << View().Mapping().PanNow().x << ' ' << View().Mapping().PanNow().y << ' ' << m_Host.m_aAttributePlaces.size()
        << ' ' << static_cast<int>(View().CurveType()) << ' ' << Grid().Constraints().PendingCurve().Points().size()
        << ' ';
    for (const CPtCstr& point : Grid().Constraints().Points())
      out << point.HasState(PtCstrState::kSelected) << point.HasState(PtCstrState::kChosen);
    for (const CCntrCtrl& curve : Grid().Constraints().Curves()) {
      for (const CCntrNode& node : curve.Nodes()) out << node.HasState(PtCstrState::kSelected);
    }
    out << ' ' << m_Host.m_iChoosingEnds << ' ' << CountSelected(Grid().Wanted().Current().Root()) << ' '
        << Grid().Surface().Lattice().Count(PointFlag::kFrozen);
    // A view that has been moved has a corner outside the picture.
    m_Host.m_abInside.clear();
    for (const auto& [x, y] : {CPlanePoint{0.5, 0.5}, {99.5, 0.5}, {99.5, 99.5}, {0.5, 99.5}}) Move(x, y);
    for (const bool inside : m_Host.m_abInside) out << ' ' << inside;
    TakeConsole();
    return out.str();
  }
  static int CountSelected(const CSaveQuadT& node) {
    int count = node.IsSelected() ? 1 : 0;
    for (int k = 0; node.HasChildren() && k < 4; ++k) count += CountSelected(node.Child(k));
    return count;
  }
  std::string Outcome(const std::function<void()>& act) {
    const std::string before = State();
    act();
    const std::string after = State();
    return after == before ? "" : after;
  }
  // Where there is more to see than the view shows.
  std::string Type(const CTypedKey& key) {
    View().SetZoomAndPan(0.5, {});
    return Outcome([&] { WithTypedKey(key, [this] { return View().handle(FL_KEYBOARD) != 0; }); });
  }
  std::string Perform(const CKeyInput& input) {
    const CPlanePoint from = input.m_bOnSomething ? kSomething : kNothing;
    const int button = input.m_aiButtons[0];
    return Outcome([&] {
      Push(button, from.x, from.y, input.m_iModifiers);
      if (input.m_Kind == CKeyInput::Kind::Drag) Drag(from.x + kDragStep.x, from.y + kDragStep.y);
      Release(button);
      Fl::e_state = 0;
    });
  }
};

class PointKeysTest : public ImageViewKeysTest, public testing::WithParamInterface<EditingMode> {
 protected:
  const std::vector<CKeyInput> m_aListed = InputsAt({"both views", "positions and normals"});
  const std::vector<CKeyInput> m_aListedForMouse = InputsAt({"left view", "positions and normals"});
};
INSTANTIATE_TEST_SUITE_P(Modes, PointKeysTest, testing::Values(EditingMode::Position, EditingMode::Normal));

}  // namespace

TEST_P(PointKeysTest, KeysAreThoseListed) {
  ExpectKeysAreThoseListed(m_aListed, [this](const CTypedKey& key) {
    SetUpPoints(GetParam());
    CStaging::Constraints(Grid()).Points().begin()->SetState(PtCstrState::kSelected, true);
    return Type(key);
  });
}

TEST_P(PointKeysTest, ClicksAndDragsAreThoseListed) {
  ExpectGesturesAreThoseListed(m_aListedForMouse, [this](const CKeyInput& input) {
    SetUpPoints(GetParam());
    return Perform(input);
  });
}

TEST_P(PointKeysTest, WheelIsListed) {
  SetUpPoints(GetParam());
  EXPECT_TRUE(IsCovered(m_aListed, ParseInput("wheel")));
  EXPECT_NE(Outcome([this] { Wheel(1); }), "");
}

// The toolkit offers the wheel to this view, too, where nothing under the pointer uses it.
TEST_P(PointKeysTest, WheelWithCtrlOutsideDoesNothing) {
  SetUpPoints(GetParam());
  EXPECT_EQ(Outcome([this] {
              Move(30, 40, FL_CTRL);
              Fl::e_x = View().w() + 20;
              Wheel(1);
            }),
            "");
  EXPECT_EQ(g_fZoom, 1);
}

// Some keys need a curve in progress, some a selected one.
TEST_F(ImageViewKeysTest, KeysForCurvesAreThoseListed) {
  ExpectKeysAreThoseListed(InputsAt({"both views", "curves"}), [this](const CTypedKey& key) {
    SetUpCurve();
    Grid().PickCurve(kSomething.x, kSomething.y, CurveType::kAll);
    const std::string ofSelected = Type(key);
    SetUpCurve();
    for (const double x : {20.5, 30.5, 40.5}) Grid().CurveEdits().AppendPending(x, 20.5);
    return Type(key) + ofSelected;
  });
}

TEST_F(ImageViewKeysTest, ClicksAndDragsForCurvesAreThoseListed) {
  ExpectGesturesAreThoseListed(InputsAt({"left view", "curves"}), [this](const CKeyInput& input) {
    SetUpCurve();
    return Perform(input);
  });
}

TEST_F(ImageViewKeysTest, WheelWithCtrlIsListedEverywhere) {
  EXPECT_TRUE(IsCovered(InputsAt({"both views"}), ParseInput("Ctrl+wheel")));
  for (const std::uint32_t flags : {0U, std::uint32_t{DebugFlag::kSelectCells}, std::uint32_t{DebugFlag::kFreeze}}) {
    for (const EditingMode mode : {EditingMode::Position, EditingMode::Normal, EditingMode::Curve}) {
      Clear(mode, flags);
      EXPECT_NE(Outcome([this] {
                  Move(30, 40, FL_CTRL);
                  Wheel(-1);
                }),
                "");
      EXPECT_DOUBLE_EQ(g_fZoom, 0.8);
    }
  }
}

TEST_F(ImageViewKeysTest, WheelIsNotListedForCurves) {
  SetUpCurve();
  EXPECT_FALSE(IsCovered(InputsAt({"curves"}), ParseInput("wheel")));
  EXPECT_EQ(Outcome([this] { Wheel(1); }), "");
}

TEST_F(ImageViewKeysTest, KeysForCellsAreThoseListed) {
  ExpectKeysAreThoseListed(InputsAt({"both views", "Select (resolution by hand)"}), [this](const CTypedKey& key) {
    Clear(EditingMode::Position, DebugFlag::kSelectCells);
    CStaging::Subdivision(Grid()).SelectRectangle(Grid().Surface().Tree(), 1, 1, 7, 7);
    return Type(key);
  });
}

TEST_F(ImageViewKeysTest, ClicksAndDragsForCellsAreThoseListed) {
  ExpectGesturesAreThoseListed(InputsAt({"Select (resolution by hand)"}), [this](const CKeyInput& input) {
    Clear(EditingMode::Position, DebugFlag::kSelectCells);
    return Perform(input);
  });
}

TEST_F(ImageViewKeysTest, KeysForAGroupAreThoseListed) {
  ExpectKeysAreThoseListed(InputsAt({"both views", "Select Several"}), [this](const CTypedKey& key) {
    SetUpGroup();
    return Type(key);
  });
}

TEST_F(ImageViewKeysTest, ClicksAndDragsForAGroupAreThoseListed) {
  ExpectGesturesAreThoseListed(InputsAt({"left view", "Select Several"}), [this](const CKeyInput& input) {
    SetUpGroup();
    return Perform(input);
  });
}

// There is nothing to let go unless it was frozen.
TEST_F(ImageViewKeysTest, ClicksAndDragsForTheFreezeBrushAreThoseListed) {
  ExpectGesturesAreThoseListed(InputsAt({"left view", "Freeze (debugging)"}), [this](const CKeyInput& input) {
    Clear(EditingMode::Position, DebugFlag::kFreeze);
    const CPlanePoint place = input.m_bOnSomething ? kSomething : kNothing;
    if (input.m_aiButtons[0] == FL_RIGHT_MOUSE) Grid().PaintFreezeMap(place.x, place.y, true);
    return Perform(input);
  });
}
