// What an export leaves behind when memory runs out halfway through it.

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "exports/SurfaceExport.h"
#include "support/AllocationCount.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/ExportBuilders.h"

namespace {

// What a surface takes, or a part of it. Of less than that there is always some, and libraries do not ask whether.
constexpr std::size_t kLarge = 2000;

std::ptrdiff_t FilesIn(const std::filesystem::path& folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

// A torn surface in lights, with a photograph.
class StarvedExport : public testing::Test {
 protected:
  StarvedExport() {
    SetRandomSurface(m_Torn.m_Grid, 3);
    SwitchOnLights(m_Torn.m_Grid);
    m_Settings.m_pPhotograph = &m_Photograph;
  }
  // The outcome where the `count`-th allocation fails that is large; false in the end, once there are no more
  // of them.
  bool Starve(const std::string& file, long count, CSaveOutcome& outcome) const {
    FailAllocation(count, kLarge);
    outcome = ExportSurface(m_Torn.m_Grid, file, m_Settings);
    const bool failed = HasAllocationFailed();
    FailAllocation(-1);
    return failed;
  }

  CTornGrid m_Torn{{{{{1.25, 2}, {5, 6.5}}}}, 4, 4};
  CReadPicture m_Photograph = PhotographOf(RandomPicture(40, 30));
  CExportSettings m_Settings;
};

}  // namespace

TEST_F(StarvedExport, LeavesNothingBehindAndSaysSo) {
  for (const CExportFormat& format : ExportFormats()) {
    const CTemporaryDirectory directory;
    const std::string file = directory.File(std::string("a") + format.m_pSuffix);
    CSaveOutcome outcome;
    int refused = 0;
    for (long count = 0; Starve(file, count, outcome); ++count) {
      const std::ptrdiff_t files = FilesIn(directory.Path());
      if (outcome) {
        // What lacked the memory could do without.
        for (const auto& written : std::filesystem::directory_iterator(directory.Path()))
          std::filesystem::remove(written);
        continue;
      }
      ++refused;
      ASSERT_EQ(files, 0) << format.m_pSuffix << " at " << count << ": " << outcome.m_Trouble;
    }
    EXPECT_TRUE(outcome) << format.m_pSuffix << outcome.m_Trouble;
    EXPECT_GT(refused, 20) << format.m_pSuffix;
  }
}

TEST_F(StarvedExport, SaysWhatItLacks) {
  const CTemporaryDirectory directory;
  const std::string file = directory.File("a.glb");
  CSaveOutcome outcome;
  Starve(file, 20, outcome);
  EXPECT_EQ(outcome.m_Trouble, "The file " + file + " needs more memory than there is. It is not written.");
}
