// A depth map of strength 0 in the main window: nothing shown, told or saved is other than without a map.

#include <ios>
#include <sstream>
#include <string>

#include "drawing/COverlay.h"
#include "support/DepthBuilders.h"
#include "support/FileBuilders.h"
#include "support/gui/WindowTest.h"

namespace {

enum class Map { None, StrengthZero, HalfStrength };

/// The window of a model with a map or without, which notes what a user sees and saves.
class CNotingWindow : public WindowTest {
 public:
  explicit CNotingWindow(Map map) {
    CWindowServices services = Services();
    services.m_Model.m_Write = WriteModel;
    m_Window.SetServices(std::move(services));
    AddAll(Grid(), SomeConstraints());
    if (map != Map::None) {
      const auto bowl = [](double u, double v) { return u * u + v * v; };
      Grid().ReferenceEdits().Load(SharedDepthMap(32, 12, bowl), "/maps/bowl.pfm");
      Grid().ReferenceEdits().SetStrength(map == Map::StrengthZero ? 0 : 0.5);
    }
    RunUntilPaused(Grid());
    ShowWindow();
  }
  ~CNotingWindow() override { m_Window.Overlays().Show(nullptr); }
  void TestBody() override {}

  std::string Notes() {
    NoteOverlay(MenuEntry::Misfit, "Misfit: no surface has been saved yet");
    NoteSaved();
    Grid().AddPtCstr(HeightCstr(5, 23, 40));
    RunUntilPaused(Grid());
    NoteOverlay(MenuEntry::Misfit, "");
    NoteOverlay(MenuEntry::Bending, "");
    m_Window.ImageView().SetMode(EditingMode::Position);
    Grid().SelectPtCstr(10, 22, PtCstrKind::kPosition);
    NoteOverlay(MenuEntry::InfluenceMap, "");
    NoteReadOuts();
    NoteSaved();
    return m_Notes.str();
  }

 private:
  // Without a title, what has a bar is waited for.
  void NoteOverlay(MenuEntry entry, const std::string& title) {
    Menu().Choose(entry);
    const COverlay* shown = nullptr;
    RunToolkitUntil([&] {
      shown = m_Window.ImageView().Overlay();
      return shown != nullptr && (shown->m_bHasBar || (!title.empty() && shown->m_Title == title));
    });
    ASSERT_NE(shown, nullptr) << title;
    m_Notes << shown->m_Title << '|' << shown->m_Unit << '|' << shown->m_bHasBar << '|';
    for (const std::string& note : shown->m_asNotes) m_Notes << note << '|';
    m_Notes << std::hexfloat << shown->m_fLow << ' ' << shown->m_fHigh << '\n';
    for (const double value : shown->m_afAtPoints) m_Notes << value << ' ';
    m_Notes << '\n';
    Menu().Choose(entry);
    ASSERT_EQ(m_Window.ImageView().Overlay(), nullptr) << m_Notes.str();
  }
  void NoteSaved() {
    m_Dialogs.m_File = (m_Directory.Path() / "model.grid").string();
    const CHelpLine& line = HelpLine();
    Menu().Choose(kSaveGrid);
    ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Run().NextOperation() == Operation::kNone; }));
    const std::string told = line.value();
    const std::string folder = m_Directory.Path().string();
    const std::size_t at = told.find(folder);
    m_Notes << (at == std::string::npos ? told : std::string(told).erase(at, folder.size())) << '\n';
    m_Notes << BytesOf(m_Directory.Path() / "model.grid") << '\n';
  }
  void NoteReadOuts() {
    for (const Control control : {Control::ConstraintCount, Control::CellCount, Control::PointCount,
                                  Control::Iterations, Control::Influence, Control::Level})
      m_Notes << ReadOut(control) << ' ';
    m_Notes << m_Window.Solver().IsRunning() << ' ' << SurfaceHeight(Grid(), 6, 24) << '\n';
    for (const std::string& notice : m_Dialogs.m_asNotices) m_Notes << notice << '\n';
    m_Notes << m_Grid.m_Console.Take();
  }

  std::ostringstream m_Notes;
};

std::string NotesWith(Map map) { return CNotingWindow(map).Notes(); }

}  // namespace

TEST(WindowReferenceTest, StrengthZeroIsAsNoMap) {
  const std::string without = NotesWith(Map::None);
  EXPECT_NE(without.find("Height over the surface last saved"), std::string::npos);
  EXPECT_NE(without.find("Influence of a height larger by 1"), std::string::npos);
  EXPECT_TRUE(NotesWith(Map::StrengthZero) == without);
}

// What the other test looks for is there where the map counts.
TEST(WindowReferenceTest, HalfStrengthIsShownToldAndNoted) {
  const std::string with = NotesWith(Map::HalfStrength);
  for (const char* text : {"Height over the reference depth", "With the reference depth as it is fitted now",
                           "is saved without the reference depth, which a project keeps"})
    EXPECT_NE(with.find(text), std::string::npos) << text;
  EXPECT_EQ(with.find("Misfit: no surface has been saved yet"), std::string::npos);
}
