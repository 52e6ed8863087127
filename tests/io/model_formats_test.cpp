// The table of what the model is written as: what every row must have, and what no two may share.

#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/FormatBuilders.h"

namespace {

// Whether all are different, but for the value that stands for none.
template <typename Value>
bool AreDifferent(Value CModelFormat::*member, Value none) {
  std::set<Value> seen;
  for (const CModelFormat& format : ModelFormats()) {
    if (format.*member != none && !seen.insert(format.*member).second) return false;
  }
  return true;
}

std::set<std::string_view> TextsOf(const char* CModelFormat::*member) {
  std::set<std::string_view> texts;
  for (const CModelFormat& format : ModelFormats()) texts.insert(format.*member);
  return texts;
}

}  // namespace

TEST(ModelFormatsTest, EveryRowIsComplete) {
  for (const CModelFormat& format : ModelFormats()) {
    EXPECT_NE(format.m_pWrite, nullptr) << format.m_pOption;
    EXPECT_EQ(format.m_pSuffix[0], '.') << format.m_pOption;
    EXPECT_EQ(std::string_view(format.m_pOption).substr(0, 2), "--");
    for (const char* text : {format.m_pMenuText, format.m_pTitle, format.m_pDescription}) EXPECT_STRNE(text, "");
  }
}

TEST(ModelFormatsTest, NoTwoRowsShareWhatChoosesThem) {
  for (const auto member : {&CModelFormat::m_pSuffix, &CModelFormat::m_pOption, &CModelFormat::m_pMenuText})
    EXPECT_EQ(TextsOf(member).size(), ModelFormats().size());
  EXPECT_TRUE(AreDifferent(&CModelFormat::m_cKey, '\0'));
  EXPECT_TRUE(AreDifferent(&CModelFormat::m_Operation, Operation::kNone));
}

TEST(ModelFormatsTest, TheProgramsOwnIsTheFirst) { EXPECT_EQ(FormatOf("--save"), 0U); }

TEST(ModelFormatsTest, ThePictureOfASceneLiesBesideIt) {
  EXPECT_EQ(VrmlFormat().m_pPictureOf("scenes/cup.wrl"), "scenes/picture.jpg");
  EXPECT_EQ(VrmlFormat().m_pPictureOf("cup.wrl"), "picture.jpg");
  EXPECT_EQ(HeightFieldFormat().m_pPictureOf, nullptr);
}

TEST(ModelFormatsTest, EveryRowWritesItsFileAndTellsWhereItCannot) {
  const CTemporaryDirectory directory;
  const CFullModel model;
  for (const CModelFormat& format : ModelFormats()) {
    const std::string file = directory.Path() / (std::string("model") + format.m_pSuffix);
    EXPECT_TRUE(format.m_pWrite(model.m_Grid, file, {})) << format.m_pOption;
    EXPECT_FALSE(BytesOf(file).empty()) << format.m_pOption;
    EXPECT_EQ(format.m_pWrite(model.m_Grid, "/dev/null", {}).m_Trouble,
              "The file /dev/null could not be written. If it existed before, it is unchanged.");
  }
}
