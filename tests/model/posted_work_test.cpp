// What the grid does with the codes that are posted to it, one after the other, before the next tick.

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr std::array kEdits{1, 2, 4};
constexpr std::array kSwaps{8, 16, 32, 64};
constexpr std::array kMapCommands{128, 256, 1024};
constexpr std::array kHostCommands{4096, 2048, 8192, 16384, 512};
constexpr std::array kCodes{1, 2, 4, 8, 16, 32, 64, 128, 256, 1024, 4096, 2048, 8192, 16384, 512};
const std::string kUnknown = "Error : CGrid::UpdateGrid() unknown Next_Operation\n";

bool IsSwap(int code) { return code >= 8 && code <= 64; }
bool RebuildsMaps(int code) { return code == 4 || IsSwap(code) || std::ranges::count(kMapCommands, code) > 0; }

// A grid that has ticked, with a constraint in its list of which the system does not know yet.
struct CPostedGrid : CTestGrid {
  CPostedGrid() : CTestGrid(3, 1) {
    for (const CPtCstr& c : SomeConstraints()) m_Grid.AddPtCstr(c);
    m_Grid.UpdateGrid();
    CStaging::Constraints(m_Grid).Points().Add(HeightCstr(7, 21.5, 2));
    m_Console.Take();
  }
  /// The console text of a tick before which the codes are posted.
  std::string TickWith(const std::vector<int>& codes) {
    for (const int code : codes) m_Grid.Run().Post(OperationOf(code));
    m_Grid.UpdateGrid();
    return m_Console.Take();
  }
  int Rows() const { return static_cast<int>(m_Grid.Solver().System().ConstraintCount()); }

  CActingHost m_Host{m_Grid};
};

// That what a code stands for was done in a tick that ended with `test` and wrote `text`.
void ExpectPerformed(int code, const CPostedGrid& test, const std::string& text) {
  switch (code) {
    case 1:
      EXPECT_EQ(test.Rows(), 6);
      break;
    case 2:
      EXPECT_EQ(test.Rows(), 6);
      EXPECT_NE(text.find("*** SetSparseH ***\n"), std::string::npos);
      break;
    case 4:
    case 128:
    case 256:
    case 1024:
      EXPECT_NE(text.find("\nCGrid::SetDiscMap()\n"), std::string::npos);
      break;
    case 8:
    case 16:
      EXPECT_NE(text.find("Transmit : m_iNbAPoints : "), std::string::npos);
      break;
    case 32:
    case 64:
      EXPECT_NE(text.find("\nCGrid::SetDiscMap()\n"), std::string::npos);
      break;
    default:
      EXPECT_EQ(std::ranges::count(test.m_Host.m_aiCommands, code), 1);
  }
}

// How often two codes, one posted over the other, have the maps rebuilt.
int MapRebuilds(int first, int second) {
  if (first == second && !Repeats(OperationOf(first))) return RebuildsMaps(first) ? 1 : 0;
  return (RebuildsMaps(first) ? 1 : 0) + (RebuildsMaps(second) ? 1 : 0);
}

TEST(PostedWorkTest, CommonStateHasFiveRowsAndOneToCome) {
  CPostedGrid test;
  EXPECT_EQ(test.Rows(), 5);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 10);
  EXPECT_EQ(test.TickWith({}), "");
  EXPECT_EQ(test.Rows(), 5);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 20);
}

TEST(PostedWorkTest, EachPairIsPerformedInOneTick) {
  for (const int first : kCodes) {
    for (const int second : kCodes) {
      SCOPED_TRACE(std::to_string(first) + " then " + std::to_string(second));
      CPostedGrid test;
      const std::string text = test.TickWith({first, second});
      ExpectPerformed(first, test, text);
      ExpectPerformed(second, test, text);
      EXPECT_EQ(Occurrences(text, "CGrid::SetDiscMap()"), MapRebuilds(first, second));
      EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
      const std::string next = test.TickWith({});
      EXPECT_TRUE(next.empty() || next.starts_with("|")) << "nothing but a stop of the solver: " << next;
    }
  }
}

TEST(PostedWorkTest, CommandsOfTheHostComeInTheOrderInWhichTheyWerePosted) {
  for (const int first : kHostCommands) {
    for (const int second : kHostCommands) {
      if (first == second) continue;
      CPostedGrid test;
      test.TickWith({first, 1, second});
      EXPECT_EQ(test.m_Host.m_aiCommands, (std::vector{first, second}));
    }
  }
}

TEST(PostedWorkTest, ResolutionIsThatOfTheLastSwap) {
  for (const int first : kSwaps) {
    for (const int second : kSwaps) {
      CPostedGrid test;
      test.TickWith({first, second});
      EXPECT_EQ(g_bHighRes, second == 8 || second == 32 ? 1 : 0) << first << " then " << second;
    }
  }
}

TEST(PostedWorkTest, EditRestartsTheIterationWhateverCommandComesWithIt) {
  for (const int edit : kEdits) {
    for (const int command : kHostCommands) {
      for (const auto& order : {std::vector{edit, command}, std::vector{command, edit}}) {
        CPostedGrid test;
        test.TickWith(order);
        EXPECT_EQ(test.m_Grid.Solver().Counter(), 10);
        EXPECT_EQ(test.Rows(), 6);
      }
    }
  }
}

TEST(PostedWorkTest, CommandsAloneLetTheIterationGoOn) {
  for (const int command : kHostCommands) {
    CPostedGrid test;
    EXPECT_EQ(test.TickWith({command}), "");
    EXPECT_EQ(test.m_Grid.Solver().Counter(), 20);
  }
}

TEST(PostedWorkTest, CodeIsClearedWhenItsCommandRuns) {
  CPostedGrid test;
  test.m_Host.m_OnCommand = [&](int) { EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone); };
  test.TickWith({1, 16384});
  EXPECT_EQ(test.m_Host.m_aiCommands, (std::vector{16384}));
}

// As for a new grid: the command itself resets the grid, which posts a rebuild of the maps.
TEST(PostedWorkTest, CodePostedByACommandSurvives) {
  for (const int other : kCodes) {
    SCOPED_TRACE(other);
    CPostedGrid test;
    test.m_Host.m_OnCommand = [&](int operation) {
      if (operation == 4096) test.m_Grid.Reset();
    };
    test.TickWith({other, 4096});
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuildMaps);
    EXPECT_NE(test.TickWith({}).find("CGrid::SetDiscMap()"), std::string::npos);
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
  }
}

TEST(PostedWorkTest, CodePostedByACommandSurvivesTheCodesAfterIt) {
  for (const int other : kCodes) {
    CPostedGrid test;
    test.m_Host.m_OnCommand = [&](int operation) {
      if (operation == 4096) test.m_Grid.Reset();
    };
    test.TickWith({4096, other});
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuildMaps) << other;
  }
}

TEST(PostedWorkTest, NewGridInPlaceKeepsWhatWasPostedWithIt) {
  CPostedGrid test;
  test.m_Host.m_OnCommand = [&](int operation) {
    if (operation == 4096) test.Initialize(2);
  };
  test.TickWith({4096, 8192});
  EXPECT_EQ(test.m_Host.m_aiCommands, (std::vector{4096, 8192}));
  EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), 25);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 1) << "flat and without constraints";
}

// What a file needs: the heights in the numbering of the wanted subdivision. A command that writes one has the grid do
// what is owed first, whether it was posted before the command or after it.
void ExpectSavedInTheWantedSubdivision(const std::vector<int>& codes) {
  CPostedGrid test;
  CStaging::Subdivision(test.m_Grid).Root().Child(1).subdiv();
  test.m_Host.m_OnCommand = [&](int) {
    test.m_Grid.PerformPendingWork();
    EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), 14);
    EXPECT_EQ(test.m_Grid.Solver().Counter(), 0);
    EXPECT_EQ(test.Rows(), 6);
  };
  const std::string text = test.TickWith(codes);
  EXPECT_EQ(test.m_Host.m_aiCommands, (std::vector{8192}));
  EXPECT_EQ(Occurrences(text, "CGrid::SetDiscMap()"), 1);
}

TEST(PostedWorkTest, SavingFindsDoneWhatWasPostedBefore) {
  ExpectSavedInTheWantedSubdivision({4, 8192});
  ExpectSavedInTheWantedSubdivision({4, 2, 8192});
}

TEST(PostedWorkTest, SavingFindsDoneWhatWasPostedAfterIt) { ExpectSavedInTheWantedSubdivision({8192, 4}); }

TEST(PostedWorkTest, UnknownCodesAreReportedAndIgnored) {
  for (const int code : {3, 5, 32768, -1}) {
    CPostedGrid test;
    EXPECT_EQ(test.TickWith({code}), kUnknown);
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
    EXPECT_EQ(test.m_Grid.Solver().Counter(), 20);
    EXPECT_TRUE(test.m_Host.m_aiCommands.empty());
  }
}

TEST(PostedWorkTest, UnknownCodeHidesNoOther) {
  CPostedGrid test;
  const std::string text = test.TickWith({2, 3, 8192});
  EXPECT_TRUE(text.starts_with(kUnknown + "*** SetSparseH ***\n"));
  EXPECT_EQ(test.m_Host.m_aiCommands, (std::vector{8192}));
}

TEST(PostedWorkTest, CommandsOfTheProgramNeedAHost) {
  CPostedGrid test;
  test.m_Grid.Run().AttachHost(nullptr);
  EXPECT_EQ(test.TickWith({4096, 2048, 8192, 16384}), "");
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

// With no tick registered: the rebuild, no iterations.
TEST(PostedWorkTest, PerformingAtOnceRebuildsWithoutIterating) {
  CPostedGrid test;
  const std::vector<double> before = SurfaceOnLattice(test.m_Grid);
  test.m_Grid.Run().Post(Operation::kRebuild);
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Console.Take(), "*** SetSparseH ***\n9 points\n");
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 0);
  EXPECT_EQ(test.Rows(), 6);
  test.m_Grid.Surface().Reconstruct();
  EXPECT_LT(LargestDifference(SurfaceOnLattice(test.m_Grid), before), 1e-9);
}

TEST(PostedWorkTest, PerformingAtOnceDoesEveryCode) {
  for (const int first : kCodes) {
    for (const int second : kCodes) {
      SCOPED_TRACE(std::to_string(first) + " then " + std::to_string(second));
      CPostedGrid test;
      test.m_Grid.Run().Post(OperationOf(first));
      test.m_Grid.Run().Post(OperationOf(second));
      test.m_Grid.PerformPendingWork();
      const std::string text = test.m_Console.Take();
      ExpectPerformed(first, test, text);
      ExpectPerformed(second, test, text);
    }
  }
}

// No tick follows that would do it.
TEST(PostedWorkTest, PerformingAtOnceLeavesNormalsUpToDate) {
  CPostedGrid test;
  const CRamp ramp;
  SetSurface(test.m_Grid, ramp);
  CStaging::Subdivision(test.m_Grid).Root().Child(1).subdiv();
  test.m_Grid.Run().Post(Operation::kRebuildMaps);
  test.m_Grid.PerformPendingWork();
  const CPointOrder& order = test.m_Grid.Surface().Order();
  for (std::size_t k = 0; k < order.Count(); ++k)
    EXPECT_NEAR(Length(test.m_Grid.Surface().Lattice().PointNormals()[order.PointOf(k)] - ramp.Normal()), 0, 1e-6) << k;
  EXPECT_NEAR(Length(test.m_Grid.Surface().Tree().CellAt(2, 0, 0).Surface().m_CellNormal - ramp.Normal()), 0, 1e-6);
}

TEST(PostedWorkTest, PerformingNothingLetsTheIterationGoOn) {
  CPostedGrid test;
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Console.Take(), "");
  EXPECT_EQ(test.Rows(), 5);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 10);
}

}  // namespace
