#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/FileBuilders.h"
#include "support/gui/CUser.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

constexpr const char* kTitle = "please input grid file name";

// Models saved under names that are typed key by key, as at a real keyboard.
class FileChooserRunTest : public ::testing::Test {
 protected:
  // The chooser for saving a model, with the present folder selected in its field.
  std::optional<WindowId> Open() {
    m_User.ChooseEntry(MenuTitle::File, 3);
    return m_User.OpenedChooser(kTitle);
  }
  // Whether the model has been saved in the file once what is typed has been accepted with Return.
  bool Saves(const std::filesystem::path& file) {
    PressKey("Return");
    return m_User.Answer(false) && WaitUntil([&] { return std::filesystem::exists(file); });
  }
  // Types the name, first into the emptied field, then over what the field has selected.
  void TypeBothWays(const std::string& name, const std::filesystem::path& file, int delay) {
    for (const bool emptied : {true, false}) {
      ASSERT_TRUE(Open().has_value());
      if (emptied) PressKey("BackSpace");
      TypeText(name, delay);
      EXPECT_TRUE(Saves(file)) << name << ", " << delay << " ms a key, " << (emptied ? "emptied" : "selected");
      std::filesystem::remove(file);
    }
  }
  std::filesystem::path File(const std::string& name) const { return m_Program.Directory() / name; }

  CRelievo m_Program;
  CUser m_User{m_Program};
};

// The chooser for pictures, whose list follows a pattern, as completing a name shows.
class PictureChooserTest : public FileChooserRunTest {
 protected:
  PictureChooserTest() { std::filesystem::copy_file(RELIEVO_SAMPLES "/coffee.jpg", File("photo.JPG")); }

  std::optional<WindowId> OpenForPictures() {
    PressKey("alt+shift+o");
    return m_User.OpenedChooser("please input image file name");
  }
  /// Another entry of the list of patterns, by so many keys.
  void ChoosePattern(WindowId chooser, const std::vector<std::string>& keys) {
    constexpr CPixel kPatterns{150, 20};
    m_User.ClickAt(m_Program.Screen().AreaOf(chooser).At(kPatterns));
    for (const std::string& key : keys) PressKey(key);
    m_Program.Rests();
  }
  /// Types the beginning of the picture's name into the field, has it completed and accepts what stands there.
  void TypeCompleteAndAccept(WindowId chooser) {
    constexpr int kNameFromBottom = 60;
    const CArea area = m_Program.Screen().AreaOf(chooser);
    m_User.ClickAt(area.At({area.m_iWidth / 2, area.m_iHeight - kNameFromBottom}));
    PressKey("ctrl+a");
    TypeText(File("pho").string() + "\t", 5);
    PressKey("Return");
  }
  bool LoadsThePhotograph(std::size_t before) {
    return m_User.Reads("CImageView::LoadImage\tNew texture generated. new_width : 1024, new_height : 512", before);
  }
};

class FileChooserSpeedTest : public FileChooserRunTest, public ::testing::WithParamInterface<int> {};

}  // namespace

TEST_P(FileChooserSpeedTest, AbsoluteName) { TypeBothWays(File("a.grid"), File("a.grid"), GetParam()); }

TEST_P(FileChooserSpeedTest, RelativeName) {
  std::filesystem::create_directory(File("sub"));
  TypeBothWays("a.grid", File("a.grid"), GetParam());
  // The chooser opens in the folder of the last file.
  for (const auto& [name, file] : {std::pair("sub/b.grid", "sub/b.grid"), std::pair("../c.grid", "c.grid")}) {
    ASSERT_TRUE(Open().has_value());
    TypeText(name, GetParam());
    EXPECT_TRUE(Saves(File(file))) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(MillisecondsAKey, FileChooserSpeedTest, ::testing::Values(5, 60, 200));

TEST_F(FileChooserRunTest, NameIsWhatWasTypedBesideALongerOne) {
  WriteText(File("cupboard.grid"), "kept");
  ASSERT_TRUE(Open().has_value());
  TypeText("cup", 5);
  EXPECT_TRUE(Saves(File("cup")));
  EXPECT_TRUE(BytesOf(File("cupboard.grid")) == "kept");
}

TEST_F(FileChooserRunTest, TabCompletesAsFarAsOneNameIsMeant) {
  std::filesystem::create_directory(File("models"));
  WriteText(File("models/cat 1.grid"), "");
  WriteText(File("models/cat 2.grid"), "");
  ASSERT_TRUE(Open().has_value());
  TypeText("mo\tc\t3.grid", 5);
  EXPECT_TRUE(Saves(File("models/cat 3.grid")));
}

TEST_F(FileChooserRunTest, ReturnOpensATypedFolder) {
  std::filesystem::create_directory(File("sub"));
  ASSERT_TRUE(Open().has_value());
  TypeText(File("sub").string(), 5);
  PressKey("Return");
  TypeText("a.grid", 5);
  EXPECT_TRUE(Saves(File("sub/a.grid")));
}

TEST_F(FileChooserRunTest, EscapeChoosesNothing) {
  const std::optional<WindowId> chooser = Open();
  ASSERT_TRUE(chooser.has_value());
  TypeText("a.grid", 5);
  PressKey("Escape");
  EXPECT_TRUE(m_User.IsGone(*chooser));
  EXPECT_TRUE(m_Program.Rests());
  EXPECT_FALSE(std::filesystem::exists(File("a.grid")));
  // The folder stays.
  TypeBothWays("a.grid", File("a.grid"), 5);
}

TEST_F(PictureChooserTest, BitmapsAreListedAtFirst) {
  const std::optional<WindowId> chooser = OpenForPictures();
  ASSERT_TRUE(chooser.has_value());
  TypeCompleteAndAccept(*chooser);
  EXPECT_TRUE(m_User.Answer(true)) << "there is no such file, as the name was not completed";
}

TEST_F(PictureChooserTest, AllPicturesAreListedByAnotherPatternWhichStays) {
  for (std::size_t round = 0; round < 2; ++round) {
    const std::optional<WindowId> chooser = OpenForPictures();
    ASSERT_TRUE(chooser.has_value());
    if (round == 0) ChoosePattern(*chooser, {"Down", "Return"});
    TypeCompleteAndAccept(*chooser);
    EXPECT_TRUE(LoadsThePhotograph(round));
    ASSERT_TRUE(m_Program.Rests());
  }
  ASSERT_TRUE(Open().has_value()) << "of a model, whose chooser is as ever";
  TypeText("a.grid", 5);
  EXPECT_TRUE(Saves(File("a.grid")));
}
