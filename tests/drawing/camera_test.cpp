#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "drawing/CCamera.h"
#include "support/ConsoleCapture.h"

namespace {

constexpr double kPi = 3.1415926;
constexpr double kTolerance = 1e-6;

// Half the diagonal of the box (0, 0, 0) - (6, 4, 12) is 7.
CCamera Camera() {
  CCamera camera;
  camera.Reset({0, 0, 0}, {6, 4, 12});
  return camera;
}
CCamera At(double theta, double phi, double zeta) {
  CCamera camera = Camera();
  camera.m_fTheta = theta;
  camera.m_fPhi = phi;
  camera.m_fZeta = zeta;
  camera.UpdateEye();
  return camera;
}

void ExpectNear(const Vector3& a, const Vector3& b, double tolerance = kTolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}
Vector3 Offset(const CCamera& camera) { return camera.m_Eye - camera.m_Centre; }

// Degrees from one angle to another, whole turns left out.
double Turn(double from, double to) { return std::remainder(to - from, 360.0); }

struct CAngles {
  double m_fTheta;
  double m_fPhi;
  double m_fZeta;
};
constexpr std::array kAngles{CAngles{90, 0, 0},    CAngles{90, 0, 200},     CAngles{90, 180, 200}, CAngles{90, 180, 20},
                             CAngles{30, 90, 90},  CAngles{30, 270, 350},   CAngles{150, 45, 180}, CAngles{10, 359, 1},
                             CAngles{60, 1e-9, 5}, CAngles{60, 1e-9, -5.0}, CAngles{120, 200, 100}};

}  // namespace

TEST(CameraTest, ResetLooksAtTheMiddleOfTheBoxFromTheFront) {
  const CCamera camera = Camera();
  ExpectNear(camera.m_Centre, {3, 2, 6});
  EXPECT_DOUBLE_EQ(camera.m_fR, 7);
  EXPECT_DOUBLE_EQ(camera.m_fR0, 7);
  EXPECT_EQ(camera.m_fTheta, 90);
  EXPECT_EQ(camera.m_fPhi, 0);
  EXPECT_EQ(camera.m_fZeta, 0);
  ExpectNear(camera.m_Eye, {3, 2, 13});
  ExpectNear(camera.m_Up, {0, 7, 0});
}

TEST(CameraTest, ResetRestoresTheDivisors) {
  CCamera camera = Camera();
  camera.m_fRotationDivisor = camera.m_fRollDivisor = camera.m_fZoomDivisor = 1;
  camera.Reset({0, 0, 0}, {1, 1, 1});
  EXPECT_EQ(camera.m_fRotationDivisor, 200);
  EXPECT_EQ(camera.m_fRollDivisor, 3);
  EXPECT_EQ(camera.m_fZoomDivisor, 1000);
}

TEST(CameraTest, EyeAndUpFollowTheAngles) {
  const CCamera camera = At(50, 70, 110);
  const double a = kPi * 50 / 180;
  const double b = kPi * 70 / 180;
  const double c = kPi * 110 / 180;
  using std::cos, std::sin;
  ExpectNear(Offset(camera), {7 * sin(b) * sin(a), 7 * cos(a), 7 * cos(b) * sin(a)}, 1e-12);
  ExpectNear(camera.m_Up,
             {-7 * sin(b) * cos(a) * cos(c) + 7 * cos(b) * sin(c), 7 * sin(a) * cos(c),
              -7 * cos(b) * cos(a) * cos(c) - 7 * sin(b) * sin(c)},
             1e-12);
}

TEST(CameraTest, ThePiCutOffAtSevenDigitsShows) {
  // With all digits the cosine of a right angle would be 6e-17.
  EXPECT_NEAR(Offset(Camera()).y, 7 * 2.68e-8, 7 * 1e-10);
}

TEST(CameraTest, UpIsSquareToTheLineOfSightAndAsLongAsR) {
  for (const auto& [theta, phi, zeta] : kAngles) {
    const CCamera camera = At(theta, phi, zeta);
    EXPECT_NEAR(Dot(camera.m_Up, Offset(camera)), 0, kTolerance);
    EXPECT_NEAR(Length(camera.m_Up), 7, kTolerance);
  }
}

TEST(CameraTest, UpdateAnglesIsTheInverseOfUpdateEye) {
  for (const auto& [theta, phi, zeta] : kAngles) {
    CCamera camera = At(theta, phi, zeta);
    camera.m_fTheta = camera.m_fPhi = camera.m_fZeta = -1;
    const ConsoleCapture console;
    camera.UpdateAngles();
    EXPECT_NEAR(Turn(camera.m_fTheta, theta), 0, 1e-5) << theta << ' ' << phi << ' ' << zeta;
    EXPECT_NEAR(Turn(camera.m_fPhi, phi), 0, 1e-5) << theta << ' ' << phi << ' ' << zeta;
    EXPECT_NEAR(Turn(camera.m_fZeta, zeta), 0, 1e-5) << theta << ' ' << phi << ' ' << zeta;
  }
}

TEST(CameraTest, UpdateAnglesLogsThetaTwiceThenPhiAndZeta) {
  CCamera camera = At(30, 90, 60);
  const std::string text = ConsoleTextOf([&] { camera.UpdateAngles(); });
  EXPECT_EQ(text,
            "CGridView::UpdateAngles() : Theta = 30\n"
            "CGridView::UpdateAngles() : Theta = 30\n"
            "CGridView::UpdateAngles() : Phi = 90\n"
            "CGridView::UpdateAngles() : Zeta = 60\n");
}

TEST(CameraTest, UpdateAnglesAfterAResetFindsTheStartAngles) {
  CCamera camera = Camera();
  const ConsoleCapture console;
  camera.UpdateAngles();
  EXPECT_NEAR(camera.m_fTheta, 90, 1e-6);
  EXPECT_NEAR(camera.m_fPhi, 0, 1e-5);
  EXPECT_NEAR(camera.m_fZeta, 0, 1e-5);
}

TEST(CameraTest, RoundingBelowZeroDegreesStaysThere) {
  // Each of these has a sine of -1e-17 or so where it should be 0.
  for (const double phi : {0.0, 37.0, 100.0, 200.0, 301.0}) {
    CCamera camera = At(70, phi, 0);
    const ConsoleCapture console;
    camera.UpdateAngles();
    EXPECT_LT(camera.m_fZeta, 1e-5) << phi;
  }
}

TEST(CameraTest, LookingStraightDownGivesPhiAndZetaZero) {
  CCamera camera = At(0, 77, 33);
  const ConsoleCapture console;
  camera.UpdateAngles();
  EXPECT_EQ(camera.m_fTheta, 0);
  EXPECT_EQ(camera.m_fPhi, 0);
  EXPECT_EQ(camera.m_fZeta, 0);
}

TEST(CameraTest, UpdateAnglesOfAnEyeThatWasMovedAway) {
  CCamera camera = Camera();
  camera.m_Eye = camera.m_Centre + Vector3{-7, 0, 0};
  camera.m_Up = {0, 7, 0};
  const ConsoleCapture console;
  camera.UpdateAngles();
  EXPECT_NEAR(camera.m_fTheta, 90, 1e-5);
  EXPECT_NEAR(camera.m_fPhi, 270, 1e-5);
  EXPECT_NEAR(camera.m_fZeta, 0, 1e-5);
}

TEST(CameraTest, WithoutADistanceTheAnglesStayAndAreLogged) {
  CCamera camera = At(30, 90, 60);
  camera.m_fR = 0;
  EXPECT_EQ(ConsoleTextOf([&] { camera.UpdateAngles(); }),
            "CGridView::UpdateAngles() : Theta = 30\n"
            "CGridView::UpdateAngles() : Phi = 90\n"
            "CGridView::UpdateAngles() : Zeta = 60\n");
}

TEST(CameraTest, RotatingTurnsByAboutATwoHundredthRadianPerPixel) {
  CCamera right = Camera();
  right.Rotate(2, 0);
  EXPECT_NEAR(right.m_fPhi, 180 / kPi * 2 / 200, 1e-3);
  EXPECT_NEAR(right.m_fTheta, 90, 1e-5);
  CCamera up = Camera();
  up.Rotate(0, 2);
  EXPECT_NEAR(up.m_fTheta, 90 + 180 / kPi * 2 / 200, 1e-3);
  EXPECT_NEAR(up.m_fPhi, 0, 1e-5);
  CCamera left = Camera();
  left.Rotate(-2, 0);
  EXPECT_NEAR(left.m_fPhi, 360 - 180 / kPi * 2 / 200, 1e-3);
}

TEST(CameraTest, RotatingMovesTheEyeAgainstSideAndUp) {
  CCamera camera = At(60, 30, 20);
  const Vector3 side = (1 / Length(camera.m_Up)) * Cross(Offset(camera), camera.m_Up);
  const Vector3 moved = Offset(camera) - (1.0 / 200) * (15.0 * side + -10.0 * camera.m_Up);
  camera.Rotate(15, -10);
  ExpectNear(Offset(camera), 7 * Normalised(moved), 1e-5);
}

TEST(CameraTest, RotatingKeepsDistanceAndRoll) {
  CCamera camera = At(60, 30, 20);
  for (int k = 0; k < 50; ++k) camera.Rotate(7, 3);
  EXPECT_NEAR(Length(Offset(camera)), 7, kTolerance);
  EXPECT_EQ(camera.m_fZeta, 20);
  EXPECT_NEAR(Dot(camera.m_Up, Offset(camera)), 0, kTolerance);
}

TEST(CameraTest, RotatingLogsNothing) {
  CCamera camera = Camera();
  EXPECT_EQ(ConsoleTextOf([&] { camera.Rotate(5, 5); }), "");
}

TEST(CameraTest, RotatingAcrossThePoleStaysFinite) {
  CCamera camera = Camera();
  for (int k = 0; k < 500; ++k) {
    camera.Rotate(0, -3);
    ASSERT_TRUE(IsFinite(camera.m_Eye)) << k;
    ASSERT_TRUE(IsFinite(camera.m_Up)) << k;
  }
}

TEST(CameraTest, ZoomAddsAThousandthPerPixel) {
  CCamera camera = At(60, 30, 20);
  camera.Zoom(30, -10);
  EXPECT_DOUBLE_EQ(camera.m_fR, 7 * 1.02);
  EXPECT_NEAR(Length(Offset(camera)), 7 * 1.02, kTolerance);
  EXPECT_NEAR(Length(camera.m_Up), 7 * 1.02, kTolerance);
  EXPECT_EQ(camera.m_fR0, 7);
}

TEST(CameraTest, ZoomOfAThousandPixelsDoublesRAndBackwardsReachesZero) {
  CCamera camera = Camera();
  camera.Zoom(0, 1000);
  EXPECT_DOUBLE_EQ(camera.m_fR, 14);
  camera.Zoom(-1000, 0);
  EXPECT_EQ(camera.m_fR, 0);
}

TEST(CameraTest, ZoomHasNoLowerBound) {
  CCamera camera = Camera();
  camera.Zoom(-1500, 0);
  EXPECT_DOUBLE_EQ(camera.m_fR, -3.5);
  camera.Rotate(4, 0);
  EXPECT_NEAR(std::abs(Turn(0, camera.m_fPhi)), 180 / kPi * 4 / 200, 1e-2);
  EXPECT_NEAR(Length(Offset(camera)), 3.5, kTolerance);
}

TEST(CameraTest, WithoutADistanceDragsLeaveTheCameraFinite) {
  CCamera camera = At(30, 90, 60);
  camera.Zoom(-1000, 0);
  camera.Rotate(5, 5);
  camera.Roll(3, 0);
  EXPECT_EQ(camera.m_fTheta, 30);
  EXPECT_EQ(camera.m_fPhi, 90);
  EXPECT_TRUE(IsFinite(camera.m_Eye));
  ExpectNear(camera.RotateDirection({1, 2, 3}, 5, 5), {1, 2, 3});
}

TEST(CameraTest, RollAddsAThirdDegreePerPixel) {
  CCamera camera = Camera();
  camera.Roll(20, 10);
  EXPECT_DOUBLE_EQ(camera.m_fZeta, 10);
  ExpectNear(camera.m_Up, {7 * std::sin(kPi / 18), 7 * std::cos(kPi / 18), 0}, 1e-5);
  camera.Roll(-30, -30);
  EXPECT_DOUBLE_EQ(camera.m_fZeta, -10);
}

TEST(CameraTest, DirectionsTurnAsTheEyeDoes) {
  CCamera camera = At(60, 30, 20);
  const Vector3 offset = Offset(camera);
  const Vector3 turned = camera.RotateDirection(offset, 15, -10);
  camera.Rotate(15, -10);
  ExpectNear(turned, Offset(camera), 1e-5);
}

TEST(CameraTest, TurningDirectionsIsARotation) {
  const CCamera camera = At(60, 30, 20);
  const Vector3 a{1, 2, -3};
  const Vector3 b{0.5, 0, 4};
  const Vector3 c = camera.RotateDirection(a, 40, 90);
  const Vector3 d = camera.RotateDirection(b, 40, 90);
  EXPECT_NEAR(Length(c), Length(a), 1e-12);
  EXPECT_NEAR(Dot(c, d), Dot(a, b), 1e-12);
  ExpectNear(Cross(c, d), camera.RotateDirection(Cross(a, b), 40, 90), 1e-12);
}

TEST(CameraTest, TurningAlongTheAxisLeavesADirection) {
  const CCamera camera = Camera();
  ExpectNear(camera.RotateDirection({0, 5, 0}, 30, 0), {0, 5, 0});
  ExpectNear(camera.RotateDirection({1, 2, 3}, 0, 0), {1, 2, 3});
}

TEST(CameraTest, HeightOfADragIsWhatItCoversOnAFlatSquareModel) {
  CCamera camera;
  camera.Reset({0, 0, 0}, {100, 100, 0});
  EXPECT_NEAR(camera.HeightOfDrag(430, 430, 100), 2 * camera.m_fR, 1e-9);
  EXPECT_NEAR(camera.HeightOfDrag(430, 430, 100), 100 * (100 * camera.m_fR / (camera.m_fR0 * camera.m_fR0)), 1e-9);
  camera.Zoom(-500, 0);
  EXPECT_NEAR(camera.HeightOfDrag(-43, 430, 100), -0.2 * camera.m_fR, 1e-9);
}

TEST(CameraTest, HeightOfADragInNoViewIsZero) {
  EXPECT_EQ(Camera().HeightOfDrag(10, 0, 100), 0);
  EXPECT_EQ(CCamera{}.HeightOfDrag(10, 430, 100), 0);
}

// Fitting.

namespace {

// What a view of that proportion shows of the points: from the middle, in halves of its width and height.
struct CSeen {
  double m_fLeft = 1e300;
  double m_fRight = -1e300;
  double m_fBottom = 1e300;
  double m_fTop = -1e300;
};
CSeen SeenIn(const CCamera& camera, std::span<const float> points, double width, double height) {
  const Vector3 up = Normalised(camera.m_Up);
  const Vector3 side = Cross(up, Normalised(Offset(camera)));
  const double shorter = std::min(width, height);
  CSeen seen;
  for (std::size_t k = 0; k < points.size(); k += 3) {
    const Vector3 p = Vector3{points[k], points[k + 1], points[k + 2]} - camera.m_Centre;
    const double x = Dot(p, side) / (camera.m_fR * width / shorter);
    const double y = Dot(p, up) / (camera.m_fR * height / shorter);
    seen = {std::min(seen.m_fLeft, x), std::max(seen.m_fRight, x), std::min(seen.m_fBottom, y),
            std::max(seen.m_fTop, y)};
  }
  return seen;
}

constexpr std::array<float, 12> kPoints{0, 0, 0, 6, 1, 2, 5, 4, 12, 2, 3, 7};

}  // namespace

TEST(CameraTest, FittedItShowsAllPointsWithNoRoomLeft) {
  for (const CAngles& angles : kAngles) {
    for (const auto& [width, height] : {std::array{1.0, 1.0}, std::array{800.0, 600.0}, std::array{3.0, 10.0}}) {
      CCamera camera = At(angles.m_fTheta, angles.m_fPhi, angles.m_fZeta);
      camera.Fit(kPoints, width, height);
      const CSeen seen = SeenIn(camera, kPoints, width, height);
      EXPECT_NEAR(seen.m_fLeft, -seen.m_fRight, kTolerance) << "in the middle";
      EXPECT_NEAR(seen.m_fBottom, -seen.m_fTop, kTolerance);
      EXPECT_NEAR(std::max(seen.m_fRight, seen.m_fTop), 1, kTolerance);
      EXPECT_EQ(camera.m_fTheta, angles.m_fTheta);
      EXPECT_NEAR(Length(Offset(camera)), camera.m_fR, kTolerance);
    }
  }
}

TEST(CameraTest, NothingIsFittedWithoutPointsOrToOneAlone) {
  CCamera camera = Camera();
  camera.Fit({}, 4, 3);
  ExpectNear(camera.m_Centre, {3, 2, 6});
  EXPECT_EQ(camera.m_fR, 7);
  camera.Fit(std::span(kPoints).first(3), 4, 3);
  ExpectNear(camera.m_Centre, {0, 0, 6});
  EXPECT_EQ(camera.m_fR, 7);
}

namespace {

// Where the view shows a point, in pixels from the top left, as the projection and the look-at matrix say; and how far
// it lies before the centre.
Vector3 PlaceOnScreen(const CCamera& camera, const CHalfSizes& sizes, int width, int height, const Vector3& point) {
  const Vector3 forward = Normalised(camera.m_Centre - camera.m_Eye);
  const Vector3 side = Normalised(Cross(forward, camera.m_Up));
  const Vector3 up = Cross(side, forward);
  const Vector3 offset = point - camera.m_Eye;
  return {(Dot(offset, side) / sizes.m_fWidth + 1) / 2 * width - 0.5,
          (1 - Dot(offset, up) / sizes.m_fHeight) / 2 * height - 0.5, Dot(camera.m_Centre - point, forward)};
}

struct CRandomView {
  CRandomView() {
    m_Camera.Zoom(*rc::gen::element(0, 300, -700, -1500), 0);
    m_Camera.Pan(*rc::gen::inRange(-9, 9), *rc::gen::inRange(-9, 9));
  }
  Vector3 OnScreen(const Vector3& point) const { return PlaceOnScreen(m_Camera, Sizes(), m_iWidth, m_iHeight, point); }
  CHalfSizes Sizes() const { return m_Camera.HalfSizes(m_iWidth, m_iHeight, m_bProportional); }

  CCamera m_Camera = At(*rc::gen::inRange(1, 180), *rc::gen::inRange(0, 360), *rc::gen::inRange(0, 360));
  int m_iWidth = *rc::gen::inRange(1, 3000);
  int m_iHeight = *rc::gen::inRange(1, 3000);
  bool m_bProportional = *rc::gen::arbitrary<bool>();
  int m_iX = *rc::gen::inRange(0, m_iWidth);
  int m_iY = *rc::gen::inRange(0, m_iHeight);
};

}  // namespace

RC_GTEST_PROP(CameraProperty, LinesOfSightEndUnderTheirPixels, ()) {
  const CRandomView view;
  const CSightLine line = view.m_Camera.SightLine(view.m_iX, view.m_iY, view.m_iWidth, view.m_iHeight, view.Sizes());
  const Vector3 shown = view.OnScreen(line.m_Point + *rc::gen::inRange(-50, 50) * line.m_Direction);
  RC_ASSERT(std::abs(shown.x - view.m_iX) < 1e-6);
  RC_ASSERT(std::abs(shown.y - view.m_iY) < 1e-6);
  RC_ASSERT(Dot(line.m_Direction, view.m_Camera.m_Centre - view.m_Camera.m_Eye) > 0);
}

RC_GTEST_PROP(CameraProperty, APointZoomedAboutStaysAndComesToTheCentresDepth, ()) {
  CRandomView view;
  const Vector3 point{1.0 * *rc::gen::inRange(-9, 9), 1.0 * *rc::gen::inRange(-9, 9), 1.0 * *rc::gen::inRange(-9, 9)};
  const Vector3 before = view.OnScreen(point);
  const double factor = *rc::gen::element(0.8, 1.25, 0.3);
  const double r = view.m_Camera.m_fR;
  view.m_Camera.ZoomAbout(factor, point);
  const Vector3 after = view.OnScreen(point);
  RC_ASSERT(std::abs(view.m_Camera.m_fR - factor * r) < 1e-9);
  RC_ASSERT(std::abs(after.x - before.x) < 1e-4 && std::abs(after.y - before.y) < 1e-4);
  RC_ASSERT(std::abs(after.z) < 1e-6);
}

TEST(CameraTest, ZoomByFactorsIsHeldToAThousandTimes) {
  CCamera camera = Camera();
  camera.ZoomAbout(1e-9, {1, 2, 3});
  EXPECT_EQ(camera.m_fR, 7 * 1e-3);
  camera.ZoomAbout(1e9, {1, 2, 3});
  EXPECT_EQ(camera.m_fR, 7 * 1e3);
  camera.m_fR = 0;
  camera.ZoomAbout(2, {1, 2, 3});
  camera.Pan(1, 1);
  EXPECT_EQ(camera.m_fR, 0);
}

TEST(CameraTest, PanningMovesCentreAndEyeTogether) {
  CCamera camera = Camera();
  camera.Pan(2, -1);
  ExpectNear(camera.m_Centre, {5, 1, 6});
  ExpectNear(Offset(camera), {0, 0, 7});
  EXPECT_EQ(camera.m_fTheta, 90);
}

TEST(CameraTest, InTrueProportionsTheShorterSideShowsTwoR) {
  const CCamera camera = Camera();
  EXPECT_EQ(camera.HalfSizes(400, 200, true).m_fWidth, 14);
  EXPECT_EQ(camera.HalfSizes(400, 200, true).m_fHeight, 7);
  EXPECT_EQ(camera.HalfSizes(100, 200, true).m_fHeight, 14);
  EXPECT_EQ(camera.HalfSizes(400, 200, false).m_fWidth, 7);
  EXPECT_EQ(camera.HalfSizes(400, 200, false).m_fHeight, 7);
}
