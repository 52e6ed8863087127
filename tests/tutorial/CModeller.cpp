#include "tutorial/CModeller.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "io/Bmp.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

constexpr int kScreenWidth = 1280;
constexpr int kScreenHeight = 1024;
// What the window manager puts around a window.
constexpr int kTitleBar = 21;
const std::string kReferencePanel = "Reference depth";
constexpr int kFrame = 1;

void Expect(bool holds, const std::string& what) {
  if (!holds) throw std::runtime_error("the program does not answer: " + what);
}

CArea Union(const CArea& a, const CArea& b) {
  const int left = std::min(a.m_iX, b.m_iX);
  const int top = std::min(a.m_iY, b.m_iY);
  return {left, top, std::max(a.m_iX + a.m_iWidth, b.m_iX + b.m_iWidth) - left,
          std::max(a.m_iY + a.m_iHeight, b.m_iY + b.m_iHeight) - top};
}

CArea WithFrame(const CArea& window) {
  return {window.m_iX - kFrame, window.m_iY - kTitleBar, window.m_iWidth + 2 * kFrame,
          window.m_iHeight + kTitleBar + kFrame};
}

}  // namespace

CModeller::CModeller(std::filesystem::path results) : m_Results(std::move(results)) {
  std::filesystem::create_directories(m_Results);
}

void CModeller::LoadPicture(const CScene& scene) {
  const std::filesystem::path file = std::filesystem::path(RELIEVO_SAMPLES) / scene.m_Picture;
  Expect(m_User.LoadPicture(file, scene.m_iWidth, scene.m_iHeight) && m_Program.Rests(), "loading a picture");
  // Without constraints the solver has converged and would go on with the first one; after the recorder it does not.
  for (int click = 0; click < 2; ++click) ClickOn(Control::Recorder);
}

void CModeller::NewGrid(int width, const std::string& shot) {
  constexpr CPixel kRight{275, 64};
  m_User.Type("alt+n");
  const auto dialog = m_Program.WaitForWindow("Grid Initial Parameters");
  Expect(dialog.has_value() && m_Program.Rests(), "New Grid");
  const CPixel field = m_Program.Screen().AreaOf(*dialog).At(kRight);
  m_User.ClickAt(field);
  m_User.Type("ctrl+a");
  TypeText(std::to_string(width));
  Expect(m_Program.Rests(), "typing a number");
  if (!shot.empty()) Shoot(shot);
  m_User.Type("Return");
}

void CModeller::FitPicture() const {
  ::PressKey("alt+f");
  Expect(m_Program.Rests(), "the menu File");
  m_User.Type("t");
}

void CModeller::Draw(const std::vector<CStroke>& strokes) const {
  ClickOn(Control::CurveConstraint);
  for (const CStroke& stroke : strokes) {
    MovePointer(m_User.OnPhotograph(stroke.m_aNodes.front()));
    m_User.Type(std::string(1, stroke.m_chType));
    for (const CPixel node : stroke.m_aNodes) m_User.ClickAt(m_User.OnPhotograph(node));
    // Another click on the last node would be one too many: Enter adds the node under the pointer by itself.
    m_User.Type(stroke.m_bClosed ? "shift+Return" : "Return");
  }
}

CArea CModeller::Open(Control tool, const std::string& title) const {
  ClickOn(tool);
  const auto window = m_Program.WaitForWindow(title);
  Expect(window.has_value() && m_Program.Rests(), title);
  return m_Program.Screen().AreaOf(*window);
}

// With the button of its frame: the window may lie over the main window's own button.
void CModeller::Close(const std::string& title) const {
  const auto window = m_Program.Screen().FindWindow(m_Program.Pid(), title);
  Expect(window.has_value(), title);
  m_Program.Screen().AskToClose(*window);
  const auto isGone = [&] { return !m_Program.Screen().FindWindow(m_Program.Pid(), title).has_value(); };
  Expect(WaitUntil(isGone) && m_Program.Rests(), title);
}

void CModeller::Trace(const std::vector<CTrace>& traces, const std::string& shot) const {
  const std::string title = "Click to set key points - Press Enter set the last point and finish";
  Open(Control::Scissors, title);
  // Large enough for the whole picture.
  constexpr int kWidth = 620;
  constexpr int kHeight = 450;
  const WindowId window = m_Program.Screen().FindWindow(m_Program.Pid(), title).value();
  m_Program.Screen().AskForSize(window, kWidth, kHeight);
  Expect(WaitUntil([&] { return m_Program.Screen().AreaOf(window).m_iWidth == kWidth; }) && m_Program.Rests(), title);
  const CArea canvas = m_Program.Screen().AreaOf(window);
  for (const CTrace& trace : traces) {
    const std::vector<CPixel>& points = trace.m_aKeyPoints;
    const std::size_t clicks = points.size() - (trace.m_bClosed ? 0 : 1);
    for (std::size_t k = 0; k < clicks; ++k) {
      m_User.ClickAt(canvas.At(points[k]));
      if (!shot.empty() && &trace == &traces.front() && k == clicks / 2) {
        MovePointer(canvas.At(points[k + 1]));
        Expect(m_Program.Rests(), "the live wire");
        Shoot(shot);
      }
    }
    MovePointer(canvas.At(points.back()));
    m_User.Type(trace.m_bClosed ? "ctrl+Return" : "Return");
  }
  Close(title);
}

// A drag to the right raises, one to the left lowers, by as many model units as it is long. The toolkit has the mouse
// beyond the window, too.
void CModeller::Raise(const std::vector<CHeight>& heights) const {
  constexpr double kExtentWidth = 150;
  ClickOn(Control::PositionConstraint);
  const double pixelsPerUnit = m_User.AreaOf(Control::ImageView).m_iWidth / kExtentWidth;
  for (const CHeight& height : heights) {
    const CPixel place = m_User.OnPhotograph(height.m_Place);
    const int across = static_cast<int>(std::lround(height.m_iHeight * pixelsPerUnit));
    if (across == 0) {
      m_User.ClickAt(place);
    } else {
      m_User.DragSlowly(place, {place.m_iX + across, place.m_iY}, 1);
    }
  }
}

void CModeller::RaiseAlong(CPixel node, int count, int height, const std::string& beside,
                           const std::string& shot) const {
  const std::string title = "Heights along a curve";
  ClickOn(Control::CurveConstraint);
  m_User.ClickAt(m_User.OnPhotograph(node));
  m_User.ChooseEntry(MenuTitle::Edit, "h");
  const auto panel = m_Program.WaitForWindow(title);
  Expect(panel.has_value() && WaitUntil([&] { return m_Program.Screen().HasFocus(*panel); }), title);
  for (const int number : {count, height, height}) {
    ::PressKey("ctrl+a");
    TypeText(std::to_string(number));
    ::PressKey("Tab");
  }
  // Over "Follow the surface" and the side.
  for (int field = 0; field < 2; ++field) ::PressKey("Tab");
  ::PressKey("ctrl+a");
  TypeText(beside);
  Expect(m_Program.Rests(), title);
  if (!shot.empty()) Shoot(shot);
  m_User.Type("Return");
  Expect(m_User.Reads(std::to_string(count) + " heights placed along the curve"), title);
}

void CModeller::PutUpright(const std::vector<CPixel>& places) const {
  ClickOn(Control::NormalConstraint);
  for (const CPixel place : places) m_User.ClickAt(m_User.OnPhotograph(place));
}

void CModeller::SetCurvatureWeight(CPixel onCurve, const std::string& weight, const std::string& shot) const {
  constexpr CPixel kCurvature{120, 42};
  ClickOn(Control::CurveConstraint);
  m_User.ClickAt(m_User.OnPhotograph(onCurve), 3);
  const auto dialog = m_Program.WaitForWindow("Contour Attributes");
  Expect(dialog.has_value() && m_Program.Rests(), "Contour Attributes");
  m_User.ClickAt(m_Program.Screen().AreaOf(*dialog).At(kCurvature));
  m_User.Type("ctrl+a");
  TypeText(weight);
  Expect(m_Program.Rests(), "typing a number");
  Shoot(shot);
  m_User.Type("Return");
  Expect(m_User.Answer(true), "the weights of all nodes");
}

void CModeller::Relight(double removedPhi, double addedPhi, const std::string& shot) const {
  constexpr double kTheta = 55;
  constexpr double kAmbient = 0.6;
  const CLightPanelUser panel(m_User, Open(Control::LightSources, "Light sources"));
  panel.SetLights(CLightPanelUser::kRemoved, kTheta, removedPhi, kAmbient);
  panel.SetLights(CLightPanelUser::kAdded, kTheta, addedPhi, kAmbient);
  panel.ClickOn(CLightPanelUser::kUpdateInterpolation);
  panel.ClickOn(CLightPanelUser::kUpdateKd);
  panel.ClickOn(CLightPanelUser::kNewIllumination);
  Shoot(shot);
  Close("Light sources");
}

void CModeller::LoadDepthMap(const std::string& map, const std::string& shot) const {
  constexpr CPixel kLoad{195, 53};
  constexpr CPixel kOverPhotograph{150, 114};
  // Behind Undo: the grid was begun.
  m_User.ChooseEntry(MenuTitle::Edit, 1);
  const auto panel = m_Program.WaitForWindow(kReferencePanel);
  Expect(panel.has_value() && m_Program.Rests(), kReferencePanel);
  const CArea area = m_Program.Screen().AreaOf(*panel);
  m_User.ClickAt(area.At(kLoad));
  Expect(m_User.ChooseFile("please input depth map file name", std::filesystem::path(RELIEVO_SAMPLES) / map) &&
             m_Program.Rests(),
         map);
  m_User.ClickAt(area.At(kOverPhotograph));
  Shoot(shot);
  m_User.ClickAt(area.At(kOverPhotograph));
}

void CModeller::TakeSuggestedTear(const std::string& shot) const {
  constexpr CPixel kMost{160, 588};
  constexpr CPixel kSuggest{255, 619};
  const auto panel = m_Program.Screen().FindWindow(m_Program.Pid(), kReferencePanel);
  Expect(panel.has_value(), kReferencePanel);
  const CArea area = m_Program.Screen().AreaOf(*panel);
  m_User.ClickAt(area.At(kMost));
  m_User.Type("ctrl+a");
  TypeText("1");
  m_User.Type("Return");
  m_User.ClickAt(area.At(kSuggest));
  Shoot(shot);
  Close(kReferencePanel);
}

void CModeller::Solve() const {
  constexpr int kRounds = 10;
  ClickOn(Control::ResumeSolver);
  const auto rests = [&] { return m_Program.Rests(); };
  bool converged = rests();
  for (int round = 1; round < kRounds && !converged; ++round) converged = rests();
  Expect(converged, "the solver");
}

void CModeller::Save(const std::string& name, bool withLights) const {
  m_User.ChooseEntry(MenuTitle::File, 3);
  Expect(m_User.ChooseFile("please input grid file name", m_Results / name) && m_User.Answer(withLights) &&
             m_Program.Rests(),
         "saving");
}

void CModeller::ExportVrml(const std::string& name) const {
  m_User.ChooseEntry(MenuTitle::File, 4);
  Expect(m_User.ChooseFile("please input VRML file name", m_Results / name) && m_User.Answer(true) && m_Program.Rests(),
         "exporting");
}

void CModeller::Drag(int dx, int dy, int button) const {
  const CPixel from = m_User.AreaOf(Control::ModelView).Centre();
  m_User.DragSlowly(from, {from.m_iX + dx, from.m_iY + dy}, button);
}

// Beside the controls, so that nothing is highlighted and the help line is empty.
void CModeller::RestPointer() const {
  MovePointer({kScreenWidth - 1, kScreenHeight - 1});
  Expect(m_Program.Rests(), "the pointer");
}

void CModeller::Shoot(const std::string& name) const {
  Expect(m_Program.Rests(), "drawing");
  CArea area = WithFrame(m_Program.MainArea());
  for (const WindowId window : m_Program.Screen().WindowsOf(m_Program.Pid())) {
    area = Union(area, WithFrame(m_Program.Screen().AreaOf(window)));
  }
  Capture(area, name);
}

void CModeller::ShootModel(const std::string& name) const {
  RestPointer();
  Capture(m_User.AreaOf(Control::ModelView), name);
}

void CModeller::Capture(const CArea& area, const std::string& name) const {
  const CScreenshot shot = m_User.See(area);
  std::vector<std::uint8_t> pixels;
  pixels.reserve(static_cast<std::size_t>(3) * static_cast<std::size_t>(shot.Width() * shot.Height()));
  for (int y = shot.Height() - 1; y >= 0; --y) {
    for (int x = 0; x < shot.Width(); ++x) {
      const CRgb pixel = shot.At({x, y});
      pixels.insert(pixels.end(), {pixel.m_uRed, pixel.m_uGreen, pixel.m_uBlue});
    }
  }
  Expect(Global::SaveBMP((m_Results / (name + ".bmp")).string(), pixels, shot.Width(), shot.Height(), 1), name);
}
