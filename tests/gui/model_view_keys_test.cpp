// Every key, click and drag in the model view, tried out and compared with the list that the user reads.

#include <sstream>
#include <string>

#include <FL/Fl.H>

#include "support/CStaging.h"
#include "support/KeyTable.h"
#include "support/UpdateBuilders.h"
#include "support/gui/ModelViewTest.h"

namespace {

// With the second light in the panel.
class CPanelHost : public CModelViewHost {
 public:
  int CurrentLight() const override { return 1; }
};

class ModelViewKeysTest : public ModelViewTest {
 protected:
  void SetUp() override {
    ModelViewTest::SetUp();
    View().AttachHost(m_PanelHost);
    View().EnableEvents();
    Grid().AddPtCstr({30, 40, PtCstrKind::kPosition, 3});
    CStaging::Constraints(Grid()).Points().begin()->SetState(PtCstrState::kSelected, true);
  }
  void TearDown() override { Fl::e_state = 0; }

  std::string State() {
    const CCamera& camera = View().Camera();
    std::ostringstream out;
    out.precision(17);
    out << camera.m_Eye.x << ' ' << camera.m_Eye.y << ' ' << camera.m_Eye.z << ' ' << camera.m_Up.x << ' '
        << camera.m_Up.y << ' ' << camera.m_fR << ' ' << Grid().Relighting().RemovedLights()
        << Grid().Relighting().AddedLights() << Grid().GetSelectedHeight() << ' ' << View().DisplayFlags();
    return out.str();
  }
  template <typename Act>
  std::string Outcome(Act&& act) {
    View().ResetCamera();
    CStaging::RemovedLights(Grid()) = CLightSet::Removed();
    CStaging::AddedLights(Grid()) = CLightSet::Added();
    Grid().SetSelectedHeight(3);
    const std::string before = State();
    act();
    m_Grid.m_Console.Take();
    return State() == before ? "" : State();
  }
  void Send(int event, int x, int y) {
    Fl::e_x = x;
    Fl::e_y = y;
    View().handle(event);
  }
  std::string Perform(const CKeyInput& input) {
    return Outcome([&] {
      Fl::e_state = input.m_iModifiers;
      Fl::e_keysym = FL_Button + input.m_aiButtons[0];
      Send(FL_PUSH, 100, 100);
      if (input.m_Kind == CKeyInput::Kind::Drag) Send(FL_DRAG, 130, 80);
      Send(FL_RELEASE, 130, 80);
    });
  }

  CPanelHost m_PanelHost;
};

}  // namespace

// The image view has the focus, also while the pointer is over this one, and passes on what is meant for it.
TEST_F(ModelViewKeysTest, NoKeyDoesAnything) {
  for (const CKeyInput& input : InputsAt({"right view"})) EXPECT_EQ(input.m_Kind, CKeyInput::Kind::Drag);
  ExpectKeysAreThoseListed({}, [this](const CTypedKey& key) {
    return Outcome([&] { WithTypedKey(key, [this] { return View().handle(FL_KEYBOARD) != 0; }); });
  });
}

TEST_F(ModelViewKeysTest, ClicksAndDragsAreThoseListed) {
  ExpectGesturesAreThoseListed(InputsAt({"right view"}), [this](const CKeyInput& input) { return Perform(input); });
}
