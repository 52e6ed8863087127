#include <array>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "editing/CSelectedValues.h"
#include "editing/TypedNumber.h"
#include "support/HistoryBuilders.h"

namespace {

using StepTexts = std::vector<std::string>;

class SelectedValuesTest : public ::testing::Test {
 protected:
  void Start(double side = 100) {
    m_Test.Grid().Initialize(2, false, 0, 0, side, side);
    m_Test.Round();
  }
  // Selected.
  void Add(const CPtCstr& constraint) {
    m_Test.Grid().AddPtCstr(constraint);
    m_Test.Grid().PointEdits().SelectNumber(m_Test.Grid().Constraints().Points().size() - 1);
    m_Test.Round();
  }
  void AddTear(double side = 100) {
    m_Test.Grid().AddCurve(PointsAt({{0.2 * side, 0.2 * side}, {0.7 * side, 0.3 * side}, {0.8 * side, 0.8 * side}}),
                           kTear, false);
    m_Test.Round();
    m_Test.Grid().CurveEdits().SelectNumber(0, 1);
  }
  const CPtCstr& Point() { return *m_Test.Grid().Constraints().Points().FirstSelected(); }
  double Value(ConstraintValue which) { return m_Values.Value(which).value_or(NAN); }
  // The steps that one change makes.
  std::size_t StepsOf(const std::function<void()>& change) {
    const std::size_t before = m_Test.Count();
    change();
    m_Test.Round();
    return m_Test.Count() - before;
  }

  CTestHistory m_Test;
  CSelectedValues m_Values{m_Test.Grid()};
};

}  // namespace

TEST_F(SelectedValuesTest, WithoutASelectionThereIsNothing) {
  Start();
  EXPECT_EQ(m_Values.What(), CSelectedValues::Selection::Nothing);
  for (std::size_t k = 0; k < kConstraintValues; ++k) {
    EXPECT_FALSE(m_Values.Value(static_cast<ConstraintValue>(k)).has_value()) << k;
    EXPECT_EQ(m_Values.Set(static_cast<ConstraintValue>(k), 7), "") << k;
  }
  EXPECT_FALSE(m_Values.TakeHeightOf(20, 20, 5));
}

TEST_F(SelectedValuesTest, NumbersOfAHeightAreSetExactlyAndOneStepEach) {
  Start();
  Add(HeightCstr(20, 30, 5));
  EXPECT_FALSE(m_Values.Value(ConstraintValue::P).has_value());
  EXPECT_EQ(StepsOf([this] { EXPECT_EQ(m_Values.Set(ConstraintValue::X, 0.3), ""); }), 1U);
  EXPECT_EQ(StepsOf([this] { EXPECT_EQ(m_Values.Set(ConstraintValue::Y, 12.3), ""); }), 1U);
  EXPECT_EQ(StepsOf([this] { EXPECT_EQ(m_Values.Set(ConstraintValue::Z, -7.1), ""); }), 1U);
  EXPECT_EQ(Point().m_fX, 0.3);
  EXPECT_EQ(Point().m_fY, 12.3);
  EXPECT_EQ(Point().m_fZ, -7.1);
  EXPECT_EQ(StepsOf([this] { m_Values.Set(ConstraintValue::Z, -7.1); }), 0U) << "it is that already";
  m_Test.Undo();
  m_Test.Undo();
  m_Test.Undo();
  EXPECT_EQ(Point().m_fX, 20);
  EXPECT_EQ(Point().m_fY, 30);
  EXPECT_EQ(Point().m_fZ, 5);
}

TEST_F(SelectedValuesTest, StepsWithinASecondAreOneStepBack) {
  Start();
  Add(HeightCstr(20, 30, 5));
  m_Test.m_Host.m_bTyping = true;
  EXPECT_EQ(StepsOf([this] {
              for (int k = 0; k < 3; ++k) EXPECT_EQ(m_Values.StepBy(ConstraintValue::Z, 1), "");
            }),
            1U);
  EXPECT_NEAR(Point().m_fZ, 5.3, 1e-12);
  EXPECT_EQ(StepsOf([this] { m_Values.Set(ConstraintValue::Z, 6); }), 1U) << "what is typed is a step of its own";
  m_Test.Undo();
  EXPECT_NEAR(Point().m_fZ, 5.3, 1e-12);
}

TEST_F(SelectedValuesTest, PlacesOutsideAreRefused) {
  Start();
  Add(HeightCstr(20, 30, 5));
  EXPECT_EQ(m_Values.Set(ConstraintValue::X, 100), "x goes from 0.1 to 99.9");
  EXPECT_EQ(m_Values.Set(ConstraintValue::Y, -1), "y goes from 0.1 to 99.9");
  EXPECT_EQ(Point().m_fX, 20);
  EXPECT_EQ(Point().m_fY, 30);
  EXPECT_EQ(m_Values.Set(ConstraintValue::X, 99.9), "");
}

TEST_F(SelectedValuesTest, SlopesAreTiltAndDirectionToo) {
  Start();
  Add(SlopeCstr(20, 30, 1, 0));
  EXPECT_FALSE(m_Values.Value(ConstraintValue::Z).has_value());
  EXPECT_NEAR(Value(ConstraintValue::Tilt), 45, 1e-12);
  EXPECT_EQ(Value(ConstraintValue::Direction), 0);
  EXPECT_EQ(m_Values.Set(ConstraintValue::Direction, 90), "");
  EXPECT_EQ(Point().m_fP, 0) << "no rest of rounding";
  EXPECT_NEAR(Point().m_fQ, 1, 1e-12);
  EXPECT_EQ(m_Values.Set(ConstraintValue::Direction, -90), "");
  EXPECT_NEAR(Value(ConstraintValue::Direction), 270, 1e-12);
  EXPECT_EQ(m_Values.Set(ConstraintValue::Tilt, 60), "");
  EXPECT_NEAR(Point().m_fQ, -std::sqrt(3.0), 1e-12);
  for (const double tilt : {-1.0, 90.0, 120.0})
    EXPECT_EQ(m_Values.Set(ConstraintValue::Tilt, tilt), "The tilt goes from 0 to less than 90 degrees");
  EXPECT_EQ(m_Values.Set(ConstraintValue::P, 0.25), "");
  EXPECT_EQ(Point().m_fP, 0.25);
}

TEST_F(SelectedValuesTest, LevelSlopeKeepsTheDirectionThatWasChosen) {
  Start();
  Add(SlopeCstr(20, 30));
  EXPECT_EQ(Value(ConstraintValue::Direction), 0);
  EXPECT_EQ(StepsOf([this] { EXPECT_EQ(m_Values.Set(ConstraintValue::Direction, 180), ""); }), 0U);
  EXPECT_EQ(Value(ConstraintValue::Direction), 180);
  EXPECT_EQ(m_Values.Set(ConstraintValue::Tilt, 45), "");
  EXPECT_NEAR(Point().m_fP, -1, 1e-12);
  Add(SlopeCstr(60, 30));
  EXPECT_EQ(Value(ConstraintValue::Direction), 0) << "another one has not";
}

TEST_F(SelectedValuesTest, NodeHasItsPlaceAndTheAttributesOfItsCurve) {
  Start();
  AddTear();
  EXPECT_EQ(m_Values.What(), CSelectedValues::Selection::Node);
  EXPECT_EQ(m_Values.Type(), kTear);
  EXPECT_FALSE(m_Values.Value(ConstraintValue::Z).has_value());
  const auto curve = [this]() -> const CCntrCtrl& { return CurveAt(m_Test.Grid().Constraints().Curves(), 0); };
  EXPECT_EQ(StepsOf([this] { EXPECT_EQ(m_Values.Set(ConstraintValue::X, 55.3), ""); }), 1U);
  EXPECT_EQ(PlacesOf(curve())[1], (std::array<double, 2>{55.3, 30}));
  EXPECT_EQ(StepsOf([this] { EXPECT_EQ(m_Values.Set(ConstraintValue::RightTorsion, 2.5), ""); }), 1U);
  EXPECT_EQ(std::next(curve().Nodes().begin())->m_Weights.m_fRightTorsion, 2.5);
  EXPECT_EQ(curve().Nodes().front().m_Weights.m_fRightTorsion, 0);
  EXPECT_EQ(m_Values.Set(ConstraintValue::LeftOrientation, 30), "");
  EXPECT_EQ(curve().AutoBump(CurveSide::Left).m_fOrientation, 30);
  EXPECT_EQ(m_Values.Set(ConstraintValue::LeftOrientation, 81), "The orientation goes from -80 to 80");
  EXPECT_EQ(m_Values.Set(ConstraintValue::RightDistance, 0), "The distance must be more than 0");
  m_Test.Undo();
  m_Test.Undo();
  m_Test.Undo();
  EXPECT_EQ(PlacesOf(curve())[1], (std::array<double, 2>{70, 30}));
  EXPECT_EQ(m_Test.Taken(), (StepTexts{"undone curve attributes", "undone curve attributes", "undone move node"}));
}

TEST_F(SelectedValuesTest, TypeOfTheCurveIsAStep) {
  Start();
  AddTear();
  CContourAttributes attributes = *m_Values.Attributes();
  attributes.m_bRightAutoBump = true;
  EXPECT_EQ(StepsOf([&] { m_Values.SetAttributes(attributes, kCrease); }), 1U);
  EXPECT_EQ(m_Values.Type(), kCrease);
  EXPECT_TRUE(m_Values.Attributes()->m_bRightAutoBump);
}

TEST_F(SelectedValuesTest, HeightIsTakenFromAnother) {
  Start();
  Add(HeightCstr(60, 60, 7.25));
  Add(SlopeCstr(61, 60, 1, 1));
  Add(HeightCstr(20, 30, 5));
  EXPECT_FALSE(m_Values.TakeHeightOf(20, 30, 1)) << "there is no other one";
  EXPECT_EQ(StepsOf([this] { EXPECT_TRUE(m_Values.TakeHeightOf(60.5, 60, 1)); }), 1U);
  EXPECT_EQ(Point().m_fZ, 7.25);
  EXPECT_EQ(Point().m_fX, 20) << "still selected";
  m_Test.Grid().PointEdits().SelectNumber(1);
  EXPECT_FALSE(m_Values.TakeHeightOf(60.5, 60, 1)) << "a slope has no height";
}

TEST_F(SelectedValuesTest, StepsFitTheUnit) {
  for (const auto& [side, step] : std::vector<std::array<double, 2>>{{0.001, 1e-6}, {100, 0.1}, {100000, 100}}) {
    Start(side);
    Add(HeightCstr(side / 2, side / 3, side / 7));
    EXPECT_NEAR(m_Values.Step(ConstraintValue::Z) / step, 1, 1e-9) << side;
    const std::string before = ShownNumber(Value(ConstraintValue::Z), m_Values.Unit(ConstraintValue::Z));
    EXPECT_EQ(m_Values.StepBy(ConstraintValue::Z, 0.01), "");
    EXPECT_NE(ShownNumber(Value(ConstraintValue::Z), m_Values.Unit(ConstraintValue::Z)), before) << side;
  }
}

TEST(TypedNumbers, AreReadWholeOrNotAtAll) {
  EXPECT_EQ(TypedNumber(" 12.5 "), 12.5);
  EXPECT_EQ(TypedNumber("+3"), 3);
  EXPECT_EQ(TypedNumber("-1e-3"), -0.001);
  for (const char* text : {"", " ", "abc", "1,5", "1.5m", "--1", "+-1", "inf", "nan", "1e999"})
    EXPECT_FALSE(TypedNumber(text).has_value()) << text;
}

TEST(TypedNumbers, AreShownWithNineDigitsAndNoNoise) {
  EXPECT_EQ(ShownNumber(44.8, 100), "44.8");
  EXPECT_EQ(ShownNumber(100000.0 / 3, 100000), "33333.3333");
  EXPECT_EQ(ShownNumber(0.00025, 0.001), "0.00025");
  EXPECT_EQ(ShownNumber(1e-12, 100), "0");
  EXPECT_EQ(ShownNumber(-1e-12, 100), "0");
}

// The group.

TEST_F(SelectedValuesTest, GroupIsChosenApartFromTheSelection) {
  Start();
  for (const CPtCstr& c : {HeightCstr(20, 20, 1), HeightCstr(40, 40, 3), SlopeCstr(30, 30), HeightCstr(80, 80, 9)})
    Add(c);
  const CPtCstrList& points = m_Test.Grid().Constraints().Points();
  CPtCstrEdits& edits = m_Test.Grid().PointEdits();
  EXPECT_EQ(StepsOf([&] { edits.ChooseIn({10, 50, 10, 50}); }), 0U);
  EXPECT_EQ(States(points, PtCstrState::kChosen), "1100") << "heights only";
  EXPECT_EQ(Selection(points), "0001");
  EXPECT_TRUE(edits.ToggleChosen(80.5, 80, 1));
  EXPECT_TRUE(edits.ToggleChosen(20, 20, 1));
  EXPECT_FALSE(edits.ToggleChosen(60, 60, 1));
  EXPECT_EQ(States(points, PtCstrState::kChosen), "0101");
  EXPECT_EQ(points.ChosenCount(), 2U);
  EXPECT_EQ(points.MeanChosenHeight(), 6);
  edits.ClearChosen();
  EXPECT_EQ(points.ChosenCount(), 0U);
}

TEST_F(SelectedValuesTest, GroupIsChangedAndDeletedInOneStepEach) {
  Start();
  for (const CPtCstr& c : {HeightCstr(20, 20, 1), HeightCstr(40, 40, 3), HeightCstr(80, 80, 9)}) Add(c);
  const CPtCstrList& points = m_Test.Grid().Constraints().Points();
  CPtCstrEdits& edits = m_Test.Grid().PointEdits();
  EXPECT_EQ(StepsOf([&] { edits.DeleteChosen(); }), 0U);
  edits.ChooseIn({10, 50, 10, 50});
  EXPECT_EQ(StepsOf([&] { edits.ChangeChosenHeights([](double z) { return z + 10; }); }), 1U);
  EXPECT_EQ(RecordAt(points, 0).m_fZ, 11);
  EXPECT_EQ(RecordAt(points, 1).m_fZ, 13);
  EXPECT_EQ(RecordAt(points, 2).m_fZ, 9);
  EXPECT_EQ(edits.LastHeight(), 13) << "what a new height may start at";
  EXPECT_EQ(StepsOf([&] { edits.DeleteChosen(); }), 1U);
  EXPECT_EQ(PlacesOf(points), (CPlaces{{80, 80}}));
  m_Test.Undo();
  m_Test.Undo();
  EXPECT_EQ(RecordAt(points, 1).m_fZ, 3);
  EXPECT_EQ(m_Test.Taken(), (StepTexts{"undone delete points", "undone move heights"}));
}

// Without a history, whose copies would take the place of the record that is deleted.
TEST(SelectedValuesAloneTest, DirectionOfALevelSlopeIsNobodyElses) {
  CTestGrid test;
  CGrid& grid = test.m_Grid;
  CSelectedValues values(grid);
  const auto direction = [&] { return values.Value(ConstraintValue::Direction).value_or(NAN); };
  for (int k = 0; k < 20; ++k) {
    grid.AddPtCstr({6, 22, PtCstrKind::kNormal});
    grid.PointEdits().SelectNumber(0);
    EXPECT_EQ(direction(), 0);
    EXPECT_EQ(values.Set(ConstraintValue::Direction, 30), "");
    EXPECT_EQ(direction(), 30);
    EXPECT_EQ(values.Set(ConstraintValue::X, 7), "");
    EXPECT_EQ(direction(), 30) << "it has only been moved";
    grid.PointEdits().DeleteSelected();
  }
}
