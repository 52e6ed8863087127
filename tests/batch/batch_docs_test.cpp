// What docs/batch.md tells to type, typed: the samples and a damaged model among them.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/ProgramRun.h"

namespace {

namespace fs = std::filesystem;

// The code between fences of that language in which a text occurs.
std::string BlockWith(const std::string& text, const std::string& language) {
  const std::string document = BytesOf(RELIEVO_BATCH_DOCUMENT);
  const std::string fence = "```" + language + "\n";
  const std::size_t from = document.rfind(fence, document.find(text)) + fence.size();
  return document.substr(from, document.find("```\n", from) - from);
}

/// A folder with a folder of models, one of which is damaged.
class BatchDocumentTest : public ::testing::Test {
 protected:
  BatchDocumentTest() {
    fs::create_directory(m_Directory.Path() / "models");
    for (const char* name : {"cat", "coffee"}) {
      for (const char* suffix : {".grid", ".jpg"}) fs::copy_file(Sample(name, suffix), Model(name, suffix));
    }
    const std::string whole = BytesOf(Sample("cat", ".grid"));
    WriteText(Model("torn off", ".grid"), whole.substr(0, whole.size() - 200));
    fs::copy_file(Sample("cat", ".jpg"), Model("torn off", ".jpg"));
  }
  static fs::path Sample(const std::string& name, const std::string& suffix) {
    return fs::path(RELIEVO_SAMPLES) / (name + suffix);
  }
  fs::path Model(const std::string& name, const std::string& suffix) const {
    return m_Directory.Path() / "models" / (name + suffix);
  }
  /// Runs commands with the built program among the others.
  int RunScript(const std::string& commands, const std::string& before = "") const {
    WriteText(m_Directory.File("script"), commands);
    const std::string path = fs::path(RELIEVO_BATCH).parent_path().string();
    return RunIn(m_Directory.Path(), "HOME=\"$PWD\" PATH='" + path + "':\"$PATH\" " + before + " bash script");
  }
  void ExpectExports() const {
    for (const char* name : {"cat", "coffee", "torn off"}) {
      for (const char* suffix : {".glb", ".stl"}) {
        const fs::path file = m_Directory.Path() / "exported" / (std::string(name) + suffix);
        EXPECT_TRUE(fs::exists(file) && fs::file_size(file) > 100'000) << file;
      }
    }
  }

  CTemporaryDirectory m_Directory;
};

}  // namespace

TEST_F(BatchDocumentTest, ParallelExportsAllModelsAndTellsTheDamagedOne) {
  ASSERT_EQ(std::system("parallel --version 2>/dev/null | grep -q '^GNU'"), 0) << "GNU parallel is not installed";
  EXPECT_EQ(RunScript(BlockWith("parallel --will-cite", "sh")), 1) << BytesOf(m_Directory.File("messages.txt"));
  ExpectExports();
  ASSERT_EQ(RunScript(BlockWith("jobs.log | sort", "sh")), 0);
  EXPECT_EQ(BytesOf(m_Directory.File("failed.txt")), "5 'models/torn off.grid'\n");
  EXPECT_NE(BytesOf(m_Directory.Path() / "logs" / "torn off.err"), "");
  EXPECT_EQ(BytesOf(m_Directory.Path() / "logs" / "cat.err"), "");
}

TEST_F(BatchDocumentTest, TasksOfAnArrayExportAModelEach) {
  WriteText(m_Directory.File("models.txt"), "models/cat.grid\nmodels/coffee.grid\nmodels/torn off.grid\n");
  fs::create_directory(m_Directory.Path() / "exported");
  const std::string script = BlockWith("#SBATCH", "bash");
  ASSERT_EQ(script.substr(0, 12), "#!/bin/bash\n");
  for (const auto& [task, status] : {std::pair{"1", 0}, {"2", 0}, {"3", 5}})
    EXPECT_EQ(RunScript(script, std::string("SLURM_ARRAY_TASK_ID=") + task), status) << task;
  ExpectExports();
}
