// What the buttons and read-outs of the main window do.

#include "support/ConstraintBuilders.h"
#include "support/gui/WindowCommandsTest.h"

TEST_F(WindowCommandsTest, AttachingShowsTheResolution) {
  EXPECT_EQ(ReadOut(Control::CellCount), Grid().Surface().Tree().LeafCount());
  EXPECT_EQ(ReadOut(Control::PointCount), Grid().Surface().ActivePointCount());
}

TEST_F(WindowCommandsTest, EditingModesAreSelected) {
  struct CRow {
    Control m_Control;
    EditingMode m_Mode;
    int m_iNumber;
    int m_iHelp;
    bool m_bCurveTypes;
  };
  EXPECT_EQ(m_Window.ImageView().Mode(), EditingMode::Unset);
  for (const CRow& row : {CRow{Control::PositionConstraint, EditingMode::Position, 101, 2, false},
                          CRow{Control::CurveConstraint, EditingMode::Curve, 103, 4, true},
                          CRow{Control::NormalConstraint, EditingMode::Normal, 102, 3, false}}) {
    ClickOn(row.m_Control);
    EXPECT_EQ(m_Window.ImageView().Mode(), row.m_Mode);
    EXPECT_EQ(static_cast<int>(row.m_Mode), row.m_iNumber);
    EXPECT_TRUE(IsOn(row.m_Control));
    EXPECT_EQ(HelpLine().CurrentHelp(), row.m_iHelp);
    EXPECT_EQ(IsActive(Control::CurveType), row.m_bCurveTypes);
  }
}

TEST_F(WindowCommandsTest, CurveTypesAreSelected) {
  for (const auto& [control, type] : {std::pair{Control::PositionDiscontinuity, 1},
                                      {Control::FairnessConstraint, 4},
                                      {Control::NormalDiscontinuity, 2}}) {
    ClickOn(control);
    EXPECT_EQ(static_cast<int>(m_Window.ImageView().CurveType()), type);
  }
}

TEST_F(WindowCommandsTest, ResetsBringTheViewsBackAndRedrawThem) {
  ShowWindow();
  DrawBoth();
  g_fZoom = 3;
  ClickOn(Control::ResetImageView);
  EXPECT_EQ(g_fZoom, 1.0);
  EXPECT_NE(m_Window.ImageView().damage(), 0);
  const CCamera before = m_Window.GridView().Camera();
  CCamera turned = before;
  turned.Rotate(40, 30);
  m_Window.GridView().SetCamera(turned);
  DrawBoth();
  ClickOn(Control::ResetModelView);
  EXPECT_EQ(Length(m_Window.GridView().Camera().m_Eye - before.m_Eye), 0);
  EXPECT_NE(m_Window.GridView().damage(), 0);
}

TEST_F(WindowCommandsTest, ButtonsOfTheSolverRedrawTheModel) {
  ShowWindow();
  for (const Control control : {Control::ResetSolver, Control::TestWavelets}) {
    DrawBoth();
    ClickOn(control);
    EXPECT_NE(m_Window.GridView().damage(), 0);
  }
}

TEST_F(WindowCommandsTest, TwiceSlowerAndTwiceFasterIsTheOldInterval) {
  EXPECT_EQ(g_fTimerInterval, 0.02);
  ClickOn(Control::Slower);
  EXPECT_DOUBLE_EQ(g_fTimerInterval, 0.03);
  ClickOn(Control::Slower);
  EXPECT_DOUBLE_EQ(g_fTimerInterval, 0.045);
  ClickOn(Control::Faster);
  EXPECT_DOUBLE_EQ(g_fTimerInterval, 0.03);
  ClickOn(Control::Faster);
  EXPECT_DOUBLE_EQ(g_fTimerInterval, 0.02);
}

TEST_F(WindowCommandsTest, IterationsAreShownAndLogged) {
  Console();
  m_Window.SetNumberIter(120);
  EXPECT_EQ(ReadOut(Control::Iterations), 120);
  EXPECT_EQ(Console(), "CImageViewUI::SetNumberIter(120)\n");
}

TEST_F(WindowCommandsTest, GridShowsItsCounts) {
  Grid().AddPtCstr(HeightCstr(4, 22, 1));
  EXPECT_EQ(ReadOut(Control::ConstraintCount), 1);
  Grid().AddPtCstr(HeightCstr(-100, 22, 1));
  EXPECT_EQ(ReadOut(Control::ConstraintCount), 1) << "one outside the model asks for nothing";
  m_Window.SetNumberOfCells(40);
  m_Window.SetNumberOfPoints(60);
  EXPECT_EQ(ReadOut(Control::CellCount), 40);
  EXPECT_EQ(ReadOut(Control::PointCount), 60);
}

TEST_F(WindowCommandsTest, ViewsShowWhatIsUnderTheMouse) {
  m_Window.ShowNumber(17, -4);
  m_Window.ShowInfluence(0.25);
  EXPECT_EQ(ReadOut(Control::PointNumber), 17);
  EXPECT_EQ(ReadOut(Control::Level), -4);
  EXPECT_EQ(ReadOut(Control::Influence), 0.25);
  for (const bool inside : {true, false}) {
    m_Window.ShowPointerInside(inside);
    EXPECT_EQ(IsOn(Control::PointerInside), inside);
  }
}

TEST_F(WindowCommandsTest, TracedInterpolationIsShown) {
  const double x = kOblong.x0 + 0.3 * (kOblong.x1 - kOblong.x0);
  const double y = kOblong.y0 + 0.4 * (kOblong.y1 - kOblong.y0);
  ASSERT_TRUE(Grid().Marks().TraceInterpolation(x, y));
  const auto triangle = Grid().Surface().Interpolation().ShortStencil(Grid().Surface().Lattice().ColumnOf(x),
                                                                      Grid().Surface().Lattice().RowOf(y));
  EXPECT_EQ(ReadOut(Control::FirstNumber), Grid().Surface().Order().NumberOf(triangle->m_uA));
  EXPECT_EQ(ReadOut(Control::SecondNumber), Grid().Surface().Order().NumberOf(triangle->m_uB));
  EXPECT_DOUBLE_EQ(ReadOut(Control::CentreCoef), triangle->m_fCCenter);
  EXPECT_DOUBLE_EQ(ReadOut(Control::FirstCoef), triangle->m_fCa);
  EXPECT_DOUBLE_EQ(ReadOut(Control::SecondCoef), triangle->m_fCb);
}

TEST_F(WindowCommandsTest, DebugButtonsSetTheirFlag) {
  for (const auto& [control, flag] : {std::pair{Control::Select, 1U},
                                      {Control::HorizontalCoefs, 2U},
                                      {Control::VerticalCoefs, 4U},
                                      {Control::TorsionCells, 8U},
                                      {Control::TestInterpolation, 16U},
                                      {Control::NormalTest, 0x100U}}) {
    ClickOn(control);
    EXPECT_EQ(DebugFlags(), flag);
    ClickOn(control);
    EXPECT_EQ(DebugFlags(), 0U);
  }
}

TEST_F(WindowCommandsTest, InfluenceIsShownWhileATermIs) {
  for (const Control control : {Control::HorizontalCoefs, Control::VerticalCoefs, Control::TorsionCells}) {
    ClickOn(control);
    EXPECT_TRUE(IsVisible(Control::Influence));
    m_Window.ShowInfluence(3);
    ClickOn(control);
    EXPECT_FALSE(IsVisible(Control::Influence));
    EXPECT_EQ(ReadOut(Control::Influence), -1);
  }
}

TEST_F(WindowCommandsTest, InterpolationTestShowsItsReadOuts) {
  ClickOn(Control::TestInterpolation);
  EXPECT_TRUE(IsVisible(Control::Interpolation));
  EXPECT_FALSE(IsVisible(Control::PointCount));
  ClickOn(Control::TestInterpolation);
  EXPECT_FALSE(IsVisible(Control::Interpolation));
  EXPECT_TRUE(IsVisible(Control::PointCount));
}

TEST_F(WindowCommandsTest, LevelButtonGoesThroughItsStates) {
  struct CRow {
    std::uint32_t m_uFlags;
    const char* m_pLabel;
    bool m_bDown;
    bool m_bLevel;
    bool m_bInfluence;
  };
  for (const CRow& row :
       {CRow{64, "SHOW\nH LEVEL", false, true, false}, CRow{32, "SHOW\nPOINT\nAREA", true, false, true},
        CRow{0, "", false, false, false}, CRow{64, "SHOW\nH LEVEL", false, true, false}}) {
    ClickOn(Control::ShowLevel);
    EXPECT_EQ(DebugFlags(), row.m_uFlags);
    EXPECT_STREQ(Button(Control::ShowLevel).label(), row.m_pLabel);
    EXPECT_EQ(IsOn(Control::ShowLevel), row.m_bDown);
    EXPECT_EQ(IsVisible(Control::Level), row.m_bLevel);
    EXPECT_EQ(IsVisible(Control::PointNumber), row.m_bLevel);
    EXPECT_EQ(IsVisible(Control::Influence), row.m_bInfluence);
  }
}

TEST_F(WindowCommandsTest, PopupGreets) {
  ClickOn(Control::Popup);
  EXPECT_EQ(m_Dialogs.m_asNotices, Texts{"Bonjour a tous !!!"});
}

TEST_F(WindowCommandsTest, DialogsEndTheDragInAView) {
  Fl::pushed(&m_Window.ImageView());
  m_Window.Notice("Look here");
  EXPECT_EQ(Fl::pushed(), nullptr);
  EXPECT_EQ(m_Dialogs.m_asNotices, Texts{"Look here"});
}

TEST_F(WindowCommandsTest, WaveletTestLogs) {
  Console();
  ClickOn(Control::TestWavelets);
  EXPECT_EQ(Console().rfind("CGrid::TestWavelets", 0), 0U);
}

TEST_F(WindowCommandsTest, NormalsOfTexelsWithoutMemoryAreNotShown) {
  LoadPicture();
  Grid().Relighting().SetMemory([] { return 0.0; });
  Menu().Choose(MenuEntry::TexelNormals);
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::TexelNormals));
  EXPECT_EQ(m_Window.GridView().DisplayFlags() & ModelFlag::kTexelNormals, 0U);
  ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U);
  EXPECT_NE(m_Dialogs.m_asNotices[0].find("not enough memory for the texels"), std::string::npos);
}

TEST_F(WindowCommandsTest, NormalsOfTexelsAreHiddenWhenANewPictureHasNoMemoryForThem) {
  LoadPicture();
  Menu().Choose(MenuEntry::TexelNormals);
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::TexelNormals));
  EXPECT_TRUE(m_Dialogs.m_asNotices.empty());
  Grid().Relighting().SetMemory([] { return 0.0; });
  LoadPicture();
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::TexelNormals));
  EXPECT_EQ(m_Dialogs.m_asNotices.size(), 1U);
}

// A grid in the proportions of the picture; the one of these tests is 16 by 8.

TEST_F(WindowCommandsTest, APictureThatTheGridStretchesIsOfferedAnotherGrid) {
  LoadPicture();
  EXPECT_EQ(HelpLine().value(), FormatHelp(HelpText::kFitOffered));
  HelpLine().ShowHelp(HelpText::kModelView);
  HelpLine().RestoreHelp();
  EXPECT_EQ(HelpLine().value(), FormatHelp(HelpText::kFitOffered)) << "the mouse has only passed over something";
  EXPECT_TRUE(Menu().IsActive(MenuEntry::FitPicture));
  Menu().Choose(MenuEntry::FitPicture);
  EXPECT_TRUE(RunToolkitUntil([this] { return Grid().Surface().Lattice().Extent() == CExtent(); }));
  LoadPicture();
  EXPECT_NE(HelpLine().value(), FormatHelp(HelpText::kFitOffered)) << "it fits";
}

TEST_F(WindowCommandsTest, TheOfferIsTakenBackWithTheFirstConstraint) {
  LoadPicture();
  Grid().AddPtCstr(HeightCstr(4, 22, 1));
  EXPECT_TRUE(RunToolkitUntil([this] { return HelpLine().CurrentHelp() == HelpText::kNone; }));
}

TEST_F(WindowCommandsTest, AGridInThePicturesProportionsIsForAnEmptyModel) {
  Grid().AddPtCstr(HeightCstr(4, 22, 1));
  LoadPicture();
  EXPECT_NE(HelpLine().value(), FormatHelp(HelpText::kFitOffered));
  const CExtent before = Grid().Surface().Lattice().Extent();
  Menu().Choose(MenuEntry::FitPicture);
  EXPECT_EQ(Grid().Surface().Lattice().Extent(), before);
  Menu().Choose(MenuEntry::Undo);
  ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Constraints().Points().empty(); }));
  Menu().TakeShortcut();
  EXPECT_TRUE(Menu().IsActive(MenuEntry::FitPicture));
}

// The run of the solver.

TEST_F(WindowCommandsTest, StopAndResumeRunTheSolver) {
  StartSolver();
  ClickOn(Control::StopSolver);
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_TRUE(IsOn(Control::StopSolver));
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::User);
  ClickOn(Control::ResumeSolver);
  EXPECT_TRUE(Grid().Run().IsRunning());
  EXPECT_TRUE(IsOn(Control::ResumeSolver));
  EXPECT_EQ(g_nSolverTimers, 1);
}

TEST_F(WindowCommandsTest, ConvergenceTurnsTheLamp) {
  StartSolver();
  EXPECT_TRUE(RunToolkitUntil([&] { return IsOn(Control::StopSolver); }));
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::Converged);
  Grid().AddPtCstr({});
  EXPECT_TRUE(IsOn(Control::ResumeSolver));
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::Command);
}

TEST_F(WindowCommandsTest, ResetOfTheSolverPostsARebuild) {
  StartSolver();
  ClickOn(Control::ResetSolver);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
}

TEST_F(WindowCommandsTest, WorkPostedWithNoTickIsDoneAtOnce) {
  Grid().Run().SetRunning(false);
  ClickOn(Control::ResetSolver);
  Grid().AddPtCstr({});
  EXPECT_TRUE(RunToolkitUntil([&] { return Grid().Run().NextOperation() == Operation::kNone; }));
  EXPECT_EQ(Grid().Solver().Counter(), 0) << "rebuilt, not iterated";
}

TEST_F(WindowCommandsTest, WorkPostedBetweenAStopAndTheLastTickIsDone) {
  StartSolver();
  ClickOn(Control::StopSolver);
  Menu().Choose(MenuEntry::LoadGrid);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kLoadGrid);
  EXPECT_TRUE(RunToolkitUntil([&] { return !m_Dialogs.m_aChoosers.empty(); }));
}

TEST_F(WindowCommandsTest, WhileTheSolverRunsLoadingWaitsForItsNextTick) {
  StartSolver();
  m_Dialogs.m_File = "model.grid";
  GiveWork();
  Menu().Choose(MenuEntry::LoadGrid);
  EXPECT_TRUE(m_asDone.empty());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kLoadGrid);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_asDone == Texts{"load"}; }));
}

TEST_F(WindowCommandsTest, WithTheSolverNeverStartedLoadingHappensAtOnce) {
  m_Dialogs.m_File = "model.grid";
  Menu().Choose(MenuEntry::LoadGrid);
  EXPECT_EQ(m_asDone, Texts{"load"});
}

TEST_F(WindowCommandsTest, LoadedGridIsShownAsItIs) {
  CWindowServices services = Services();
  services.m_Model.m_LoadGrid = [](CGrid& grid, const std::string&) {
    grid.Builder().SetWaveletMode(WaveletMode::Simple);
    grid.AddPtCstr(HeightCstr(4, 22, 1));
    g_bHighRes = 1;
    return GridFileState::Whole;
  };
  m_Window.SetServices(services);
  m_Dialogs.m_File = "model.grid";
  Menu().Choose(MenuEntry::LoadGrid);
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::SimpleWavelets));
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::NewWavelets));
  EXPECT_EQ(ReadOut(Control::ConstraintCount), 1);
  EXPECT_STREQ(Widget(Control::SwitchResolution).label(), "Switch to LR");
}

TEST_F(WindowCommandsTest, SwitchUpIsPostedAndRelabelledAtOnce) {
  for (const auto& [yes, code] : {std::pair{false, 32}, {true, 8}}) {
    m_Dialogs.m_bYes = yes;
    Console();
    ClickOn(Control::SwitchResolution);
    EXPECT_EQ(CodeOf(Grid().Run().NextOperation()), code);
    EXPECT_STREQ(Widget(Control::SwitchResolution).label(), "Switch to LR");
    EXPECT_EQ(Console(), "CImageViewUI::cb_m_pbtnSwitchHR_LR\n");
    EXPECT_TRUE(Grid().Run().IsRunning());
  }
}

TEST_F(WindowCommandsTest, SwitchDownIsPostedAndRelabelledAtOnce) {
  g_bHighRes = 1;
  ClickOn(Control::SwitchResolution);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestoreNormal);
  EXPECT_STREQ(Widget(Control::SwitchResolution).label(), "Switch to HR");
  EXPECT_TRUE(m_Dialogs.m_asQuestions.empty());
}

// The freeze tool.

TEST_F(WindowCommandsTest, FreezeIsThereWhileItsMapIsShown) {
  EXPECT_FALSE(IsVisible(Control::Freeze));
  Menu().Choose(MenuEntry::FreezeMap);
  EXPECT_TRUE(IsVisible(Control::Freeze));
  Menu().Choose(MenuEntry::FreezeMap);
  EXPECT_FALSE(IsVisible(Control::Freeze));
}

TEST_F(WindowCommandsTest, FreezeHoldsTheSolverAndTheRecorder) {
  AddTool(Tool::Recorder);
  Menu().Choose(MenuEntry::FreezeMap);
  StartSolver();
  ClickOn(Control::Freeze);
  EXPECT_EQ(DebugFlags(), 128U);
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::Freeze);
  ExpectRunControl(false);
  EXPECT_FALSE(IsActive(Control::Recorder));
  EXPECT_FALSE(Menu().IsActive(MenuEntry::FreezeMap));
  ClickOn(Control::ResumeSolver);
  EXPECT_FALSE(Grid().Run().IsRunning());
}

TEST_F(WindowCommandsTest, SolverStaysStoppedAfterTheFreeze) {
  AddTool(Tool::Recorder);
  Menu().Choose(MenuEntry::FreezeMap);
  StartSolver();
  ClickOn(Control::Freeze);
  ClickOn(Control::Freeze);
  EXPECT_EQ(DebugFlags(), 0U);
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::User);
  ExpectRunControl(true);
  EXPECT_TRUE(IsActive(Control::Recorder));
  EXPECT_TRUE(Menu().IsActive(MenuEntry::FreezeMap));
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::FreezeMap));
}

TEST_F(WindowCommandsTest, FreezeSwitchesItsMapOn) {
  Button(Control::Freeze).value(1);
  Widget(Control::Freeze).do_callback();
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::FreezeMap));
  EXPECT_EQ(ImageFlags(), 14U + 32768U);
}
