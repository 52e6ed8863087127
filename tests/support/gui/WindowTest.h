#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "app/SolverTimer.h"
#include "support/CTemporaryDirectory.h"
#include "support/FormatBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/ToolkitTest.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/TimerInterval.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/CImageViewUI.h"

// The entries of the formats.
inline const MenuEntry kSaveGrid = WriteEntry(FormatOf("--save"));
inline const MenuEntry kSaveVrml = WriteEntry(FormatOf("--vrml"));
inline const MenuEntry kExportHeightField = WriteEntry(FormatOf("--height-field"));

/// Answers all questions in the same way and remembers them.
class ScriptedDialogs : public UserDialogs {
 public:
  std::optional<std::string> ChooseFile(const CFileQuestion& question) override {
    m_aChoosers.emplace_back(question.m_pTitle, question.m_pPattern == nullptr ? "none" : question.m_pPattern);
    m_asStarts.push_back(question.m_Start);
    return m_File;
  }
  bool Ask(const char* question) override {
    m_asQuestions.emplace_back(question);
    return m_bYes;
  }
  std::string AskText(const char* question) override {
    m_asQuestions.emplace_back(question);
    return m_Text;
  }
  void Notice(const char* text) override { m_asNotices.emplace_back(text); }

  std::optional<std::string> m_File;
  bool m_bYes = false;
  std::string m_Text;
  std::vector<std::pair<std::string, std::string>> m_aChoosers;  ///< title and pattern
  std::vector<std::string> m_asStarts;                           ///< where they begin
  std::vector<std::string> m_asQuestions;
  std::vector<std::string> m_asNotices;
};

/// A tool without a window.
class TestTool : public ToolWindow {
 public:
  bool IsOpen() const override { return m_bOpen; }
  void Open() override { m_bOpen = m_bOpens; }
  void Close() override {
    m_bOpen = false;
    ReportClosed();
  }
  void PictureLoaded() override { ++m_iPictures; }

  bool m_bOpen = false;
  bool m_bOpens = true;
  int m_iPictures = 0;
};

/// The main window with a small grid, in the test's own process. What other rooms would bring to it is noted in
/// `m_asDone`.
class WindowTest : public ToolkitTest {
 protected:
  WindowTest() { m_Window.AttachGrid(Grid()); }
  ~WindowTest() override {
    Fl::remove_timeout(OnSolverTimer);
    g_nSolverTimers = 0;
    g_fTimerInterval = 0.02;
  }
  void ShowWindow() {
    m_Window.show();
    ASSERT_TRUE(RunToolkitUntil([this] { return m_Window.ImageView().damage() == 0; }));
  }

  /// Until both views are up to date.
  void DrawBoth() {
    ASSERT_TRUE(
        RunToolkitUntil([this] { return m_Window.ImageView().damage() == 0 && m_Window.GridView().damage() == 0; }));
  }

  CMainMenu& Menu() { return m_Window.Menu(); }
  CHelpLine& HelpLine() { return m_Window.HelpLine(); }
  Fl_Widget& Widget(Control control) { return m_Window.Widget(control); }
  Fl_Button& Button(Control control) { return static_cast<Fl_Button&>(Widget(control)); }
  double ReadOut(Control control) { return static_cast<Fl_Value_Output&>(Widget(control)).value(); }
  bool IsVisible(Control control) { return Widget(control).visible_r() != 0 || ShownButNotMapped(control); }
  bool IsActive(Control control) { return Widget(control).active_r() != 0; }
  bool IsOn(Control control) { return Button(control).value() != 0; }

  /// One event of the mouse at the middle of a control, through the toolkit's own path.
  void SendMouse(int event, Control control) {
    const Fl_Widget& widget = Widget(control);
    Fl::e_x = widget.x() + widget.w() / 2;
    Fl::e_y = widget.y() + widget.h() / 2;
    Fl::e_keysym = FL_Button + FL_LEFT_MOUSE;
    Fl::e_state = event == FL_RELEASE ? 0 : FL_BUTTON1;
    Fl::handle(event, &m_Window);
  }
  void ClickOn(Control control) {
    SendMouse(FL_PUSH, control);
    SendMouse(FL_RELEASE, control);
  }
  /// A key typed with modifiers; `text` is what the keyboard makes of them.
  void Type(int key, int modifiers, const char* text = "") {
    std::string copy = text;
    Fl::e_keysym = key;
    Fl::e_state = modifiers;
    Fl::e_text = copy.data();
    Fl::e_length = static_cast<int>(copy.size());
    Fl::handle(FL_KEYBOARD, &m_Window);
    Fl::e_text = nullptr;
    Fl::e_length = 0;
  }

  // The user cancels, so that no more than the questions is asked.
  CExportServices ExportServices() {
    CExportServices services;
    services.m_AskModel = [this](CExportSurvey&, const CExportSettings&) {
      m_asDone.emplace_back("export model");
      return std::optional<CExportChoice>();
    };
    services.m_AskFilm = [this](std::size_t) {
      m_asDone.emplace_back("export film");
      return std::optional<CFilmChoice>();
    };
    services.m_DrawModels = [](int, int) { return CExportServices::DrawModel(); };
    services.m_ShowProgress = [](const std::string&, const std::function<CSaveOutcome(ExportProgress&)>&) {
      return CSaveOutcome();
    };
    return services;
  }
  CWindowServices Services() {
    CWindowServices services;
    const auto note = [this](const char* what) { m_asDone.emplace_back(what); };
    services.m_Model.m_AskNewGrid = [note](const CGrid&) {
      note("ask");
      return std::optional<CGridParameters>();
    };
    services.m_Model.m_LoadGrid = [note](CGrid&, const std::string&) {
      note("load");
      return GridFileState::Whole;
    };
    services.m_Model.m_Write = [note](const CModelFormat& format, const CGrid&, const std::string&,
                                      const CWriteSettings&) {
      note(&format == &VrmlFormat() ? "vrml" : "save");
      return CSaveOutcome();
    };
    services.m_Model.m_ReadProject = [note](const std::string&) {
      note("open project");
      return CReadProject();
    };
    services.m_Model.m_SaveProject = [note](const CProject&, const std::string&) {
      note("save project");
      return CSaveOutcome();
    };
    services.m_Model.m_Export = ExportServices();
    services.m_Model.m_AskSize = [note](const std::function<void(int, int)>&) { note("height field"); };
    services.m_ShowDrawingOptions = [note] { note("options"); };
    services.m_Model.m_AskContourAttributes = [note, this](const CContourAttributes& present, bool fairness) {
      note(fairness ? "fairness attributes" : "attributes");
      m_Attributes = present;
      return m_ContourAnswer;
    };
    return services;
  }
  TestTool& AddTool(CImageViewUI::Tool tool) {
    auto window = std::make_unique<TestTool>();
    TestTool& added = *window;
    m_Window.SetTool(tool, std::move(window));
    return added;
  }
  /// Chooses the menu's entry and answers with a picture of two by two pixels.
  void LoadPicture() {
    m_Dialogs.m_File = (m_Directory.Path() / "picture.bmp").string();
    using std::string_literals::operator""s;
    std::string bytes = "BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\2\0\0\0\1\0\x18"s;
    bytes.resize(70, '\0');
    std::ofstream(*m_Dialogs.m_File, std::ios::binary) << bytes;
    Menu().Choose(MenuEntry::LoadImage);
    // If the solver's tick is registered, the next one does it.
    ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Run().NextOperation() == Operation::kNone; }));
  }

  ScriptedDialogs m_Dialogs;
  std::vector<std::string> m_asDone;
  CContourAttributes m_Attributes;  ///< that were shown last
  std::optional<CContourAnswer> m_ContourAnswer;
  CGlobalScope<double> m_PickTolerance{g_fPickTolerance, 1.0};
  CTemporaryDirectory m_Directory;
  CImageViewUI m_Window{RegisterSolverTimer, &m_Dialogs};

 private:
  // Before the window is on the screen nothing in it counts as visible; what matters then is that nothing is hidden.
  bool ShownButNotMapped(Control control) {
    if (m_Window.visible() != 0) return false;
    for (const Fl_Widget* widget = &Widget(control); widget != &m_Window; widget = widget->parent())
      if (widget->visible() == 0) return false;
    return true;
  }
};
