// What the help bar says in the running program until somebody has begun.

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include <unistd.h>

#include "support/SamplePhotograph.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"
#include "support/gui/WindowTest.h"

namespace {

/// Knows how the text looks from a window of its own, which has gone when the program is started.
class FirstStepRunTest : public WindowTest {
 protected:
  void SetUp() override {
    const CRect& rect = RowOf(Control::HelpLine).m_Design;
    m_Window.ShowFirstStep();
    ASSERT_NO_FATAL_FAILURE(ShowWindow());
    const auto window = m_Screen.FindWindow(getpid(), m_Window.label());
    ASSERT_TRUE(window.has_value());
    const CPixel corner = m_Screen.AreaOf(*window).At({rect.x, rect.y});
    const CArea area{corner.m_iX, corner.m_iY, rect.w, rect.h};
    // Seen twice alike it has been drawn.
    ASSERT_TRUE(RunToolkitUntil([&] {
      const CScreenshot before = std::exchange(m_Text, m_Screen.Capture(area));
      return before == m_Text && m_Text.Count(kBlack) > kLetters;
    }));
    m_Window.hide();
    Fl::check();
  }
  void Start(const std::vector<std::string>& arguments = {}) {
    m_User.reset();
    m_Program.reset();
    m_Program.emplace(arguments);
    m_User.emplace(*m_Program);
  }
  CScreenshot Line() const { return m_User->See(m_User->AreaOf(Control::HelpLine)); }
  bool SaysIt() const {
    return WaitUntil([&] { return Line() == m_Text; });
  }
  bool SaysSomethingElse() const {
    return WaitUntil([&] { return !(Line() == m_Text); });
  }
  void PassOver(Control control) const {
    MovePointer(m_User->PlaceOf(control));
    m_Program->Rests();
  }

  // Pixels of letters, at least.
  static constexpr std::size_t kLetters = 300;
  CScreenshot m_Text{1, 1};
  std::optional<CRelievo> m_Program;
  std::optional<CUser> m_User;
};

}  // namespace

TEST_F(FirstStepRunTest, IsSaidUntilTheFirstOfThem) {
  const std::vector<std::function<void()>> beginnings{
      [&] { ASSERT_TRUE(m_User->LoadPhotograph()); },
      [&] { m_User->ClickOn(Control::PositionConstraint); },
      [&] { m_User->ClickAt(m_User->AreaOf(Control::ImageView).Centre()); },
  };
  for (std::size_t k = 0; k < beginnings.size(); ++k) {
    Start();
    EXPECT_TRUE(SaysIt()) << k;
    PassOver(Control::ResetSolver);
    EXPECT_TRUE(SaysSomethingElse()) << k << ": what the button does";
    PassOver(Control::Iterations);
    EXPECT_TRUE(SaysIt()) << k << ": nothing has begun";
    beginnings[k]();
    EXPECT_TRUE(SaysSomethingElse()) << k;
    PassOver(Control::ResetSolver);
    PassOver(Control::Iterations);
    EXPECT_FALSE(Line() == m_Text) << k << ": it does not come back";
  }
}

TEST_F(FirstStepRunTest, IsNotSaidWhereAPhotographIsNamedAtTheStart) {
  Start({kSamplePhotograph});
  ASSERT_TRUE(m_Program->Rests());
  PassOver(Control::ResetSolver);
  PassOver(Control::Iterations);
  EXPECT_FALSE(Line() == m_Text);
}
