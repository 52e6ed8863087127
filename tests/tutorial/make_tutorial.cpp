// make_tutorial first|coffee|along|cat|depth directory: makes the cup of the README or one of the samples with the real
// program on the display, step by step as README and tutorial tell it, and leaves the model and the pictures of the
// steps in the directory. The cup's lip is made of single heights or of one stroke along a curve, and standard output
// says how long that has taken.

#include <algorithm>
#include <chrono>
#include <exception>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "support/SamplePhotograph.h"
#include "tutorial/CModeller.h"

namespace {

constexpr int kGridWidth = 150;  // both photographs are about half as wide again as high
constexpr int kLip = 38;         // the height of the cup's lip and of nothing else

// Until it is gone.
class CStopwatch {
 public:
  explicit CStopwatch(std::string work) : m_Work(std::move(work)) {}
  ~CStopwatch() {
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - m_Start;
    std::cout << m_Work << ": " << spent.count() << " s\n";
  }
  CStopwatch(const CStopwatch&) = delete;
  CStopwatch& operator=(const CStopwatch&) = delete;

 private:
  std::string m_Work;
  std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

bool IsLip(const CHeight& height) { return height.m_iHeight == kLip; }

void MakeFirst(const std::string& results) {
  const CScene scene = FirstScene();
  CModeller modeller(results);
  modeller.LoadPicture(scene);
  modeller.FitPicture();
  modeller.Drag(0, -120, 1);
  modeller.Draw(scene.m_aCreases);
  modeller.Raise(scene.m_aHeights);
  modeller.PressKey("Escape");
  modeller.Solve();
  modeller.Shoot("0-first");
}

void MakeCoffee(const std::string& results) {
  const CScene scene = CoffeeScene();
  CModeller modeller(results);
  modeller.LoadPicture(scene);
  modeller.Shoot("1-photograph");
  modeller.NewGrid(kGridWidth, "2-new-grid");
  modeller.PressKey("ctrl+g");
  modeller.PressKey("ctrl+alt+g");
  modeller.Draw(scene.m_aCreases);
  modeller.Shoot("3-creases");
  modeller.Trace(scene.m_aTears, "4-scissors");
  modeller.Raise(scene.m_aHeights);
  modeller.PutUpright(scene.m_aUpright);
  modeller.PressKey("ctrl+g");
  modeller.PressKey("Escape");
  modeller.ClickOn(Control::PositionConstraint);
  modeller.Shoot("5-heights");
  modeller.Solve();
  modeller.Drag(0, -120, 1);
  modeller.Drag(0, 45, 2);
  modeller.Drag(-50, 0, 1);
  modeller.Shoot("6-model");
  modeller.ShootModel("7-before");
  modeller.Relight(135, 0, "7-lights");
  modeller.ShootModel("7-after");
  modeller.Save("coffee.grid", true);
  modeller.ExportVrml("coffee.wrl");
  modeller.Open(Control::Recorder, "Animation Record Interface");
  modeller.Shoot("8-recorder");
}

// The same cup, but for its lip.
void MakeAlong(const std::string& results) {
  const CScene scene = CoffeeScene();
  std::vector<CHeight> lip;
  std::ranges::copy_if(scene.m_aHeights, std::back_inserter(lip), IsLip);
  std::vector<CHeight> others = scene.m_aHeights;
  std::erase_if(others, IsLip);
  for (const bool along : {false, true}) {
    CModeller modeller(results);
    modeller.LoadPicture(scene);
    modeller.NewGrid(kGridWidth);
    modeller.PressKey("ctrl+g");
    modeller.PressKey("ctrl+alt+g");
    modeller.Draw(scene.m_aCreases);
    modeller.Trace(scene.m_aTears);
    modeller.Raise(others);
    modeller.PutUpright(scene.m_aUpright);
    if (along) {
      const CStopwatch watch("the lip in one stroke");
      // A node of its inner edge.
      modeller.RaiseAlong({291, 30}, static_cast<int>(lip.size()), kLip, "1.5", "5-along");
    } else {
      const CStopwatch watch("the lip in " + std::to_string(lip.size()) + " drags");
      modeller.Raise(lip);
    }
    modeller.PressKey("Escape");
    modeller.Solve();
    modeller.Drag(0, -120, 1);
    modeller.Drag(0, 45, 2);
    modeller.Drag(-50, 0, 1);
    modeller.ShootModel(along ? "6-along" : "6-single");
  }
}

void MakeCat(const std::string& results) {
  const CScene scene = CatScene();
  CModeller modeller(results);
  modeller.LoadPicture(scene);
  modeller.NewGrid(kGridWidth);
  modeller.PressKey("ctrl+g");
  modeller.PressKey("ctrl+alt+g");
  modeller.Draw(scene.m_aCreases);
  modeller.SetCurvatureWeight({236, 165}, "5", "9-fair-line");
  modeller.Trace(scene.m_aTears);
  modeller.Raise(scene.m_aHeights);
  modeller.PressKey("Escape");
  modeller.Solve();
  modeller.Drag(60, -60, 1);
  modeller.Drag(0, 45, 2);
  modeller.Shoot("cat");
  modeller.Save("cat.grid", true);
}

void MakeDepth(const std::string& results) {
  const CScene scene = CatWithDepthScene();
  CModeller modeller(results);
  modeller.LoadPicture(scene);
  modeller.FitPicture();
  modeller.PressKey("ctrl+g");
  modeller.PressKey("ctrl+alt+g");
  modeller.LoadDepthMap("cat-depth.png", "11-depth-map");
  modeller.TakeSuggestedTear("11-tear");
  modeller.Raise(scene.m_aHeights);
  modeller.PressKey("Escape");
  modeller.Solve();
  modeller.Drag(60, -60, 1);
  modeller.Drag(0, 45, 2);
  modeller.Shoot("11-cat");
}

}  // namespace

int main(int argc, char** argv) {
  const std::string model = argc == 3 ? argv[1] : "";
  try {
    if (model == "first") {
      MakeFirst(argv[2]);
    } else if (model == "coffee") {
      MakeCoffee(argv[2]);
    } else if (model == "along") {
      MakeAlong(argv[2]);
    } else if (model == "cat") {
      MakeCat(argv[2]);
    } else if (model == "depth") {
      MakeDepth(argv[2]);
    } else {
      std::cerr << "usage: make_tutorial first|coffee|along|cat|depth directory\n";
      return 2;
    }
  } catch (const std::exception& error) {
    std::cerr << "make_tutorial: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
