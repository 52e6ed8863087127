// What the command line refuses before anything is read.

#include <filesystem>
#include <string>

#include "batch/BatchTest.h"

namespace {

class BatchOptions : public Batch {
 protected:
  BatchOptions() { WriteText(Path("photo.bmp"), SmallBitmap()); }

  void ExpectRefused(const std::string& arguments, const std::string& message) const {
    EXPECT_EQ(Run(arguments), 1) << arguments;
    EXPECT_EQ(Bytes("out"), "") << arguments;
    EXPECT_NE(Bytes("err").find(message), std::string::npos) << arguments << '\n' << Bytes("err");
    EXPECT_EQ(Bytes("err").find("CGrid"), std::string::npos) << arguments << ": the model has been read";
  }
};

TEST_F(BatchOptions, NumbersAreDigitsAndNothingElse) {
  for (const char* number : {"0x10", "+5", "' 5'", "'5 '", "''", "5.0", "1e3", "5_0", "-0", "9223372036854775808",
                             "99999999999999999999999", "inf", "0b1", "1\\'000"}) {
    for (const char* option : {"--iterations", "--max-iterations", "--seed"})
      ExpectRefused(std::string("model.grid ") + option + ' ' + number, option);
  }
  ExpectRefused("model.grid --seed 4294967296", "from 0 to 4294967295 is expected, not '4294967296'");
  EXPECT_EQ(Run("model.grid --iterations 0 --seed 4294967295"), 0);
  EXPECT_EQ(Run("model.grid --iterations 010 --report json"), 0);
  EXPECT_EQ(Report()["iterations"], 10);
}

TEST_F(BatchOptions, SizesAreDigitsWithinTheBound) {
  for (const char* size : {"0x10x5", "+5x5", "5x+5", "' 5x5'", "'5x5 '", "'5 x5'", "x5", "5x", "''", "5X5",
                           "99999999999x2", "-5x-5", "5.5x5"})
    ExpectRefused(std::string("model.grid --height-field o.txt --size ") + size, "--size");
  ExpectRefused("model.grid --height-field o.txt --size 10001x10000", "at most 100000000 samples");
  ExpectRefused("model.grid --height-field o.txt --size 2147483647x2147483647", "at most 100000000 samples");
  EXPECT_FALSE(std::filesystem::exists(Path("o.txt")));
  EXPECT_EQ(Run("none.grid --height-field o.txt --size 10000x10000"), 2) << "allowed, the model is missing";
}

TEST_F(BatchOptions, FilesHaveNames) {
  for (const char* arguments :
       {"''", "model.grid --save ''", "model.grid --vrml ''", "model.grid --height-field ''", "model.grid --image ''"})
    ExpectRefused(arguments, "the name of a file is expected");
}

TEST_F(BatchOptions, TwoOutputsAreTwoFiles) {
  std::filesystem::create_directory(Path("sub"));
  std::filesystem::create_symlink("fresh", Path("dangling"));
  std::filesystem::create_symlink("sub", Path("folder"));
  WriteText(Path("old"), "old");
  std::filesystem::create_hard_link(Path("old"), Path("hard"));
  ExpectRefused("model.grid --save o --vrml o", "--save and --vrml are one file: o");
  ExpectRefused("model.grid --save o --height-field ./sub/../o", "--save and --height-field are one file");
  ExpectRefused("model.grid --vrml sub/o --height-field folder/o", "--vrml and --height-field are one file");
  ExpectRefused("model.grid --vrml dangling --height-field fresh", "are one file");
  ExpectRefused("model.grid --vrml hard --height-field old", "are one file");
  ExpectRefused("model.grid --vrml none/o --height-field none/o", "are one file");
  ExpectRefused("model.grid --vrml \"$PWD/o\" --height-field o", "are one file");
  EXPECT_EQ(Bytes("old"), "old");
  EXPECT_EQ(Run("model.grid --iterations 0 --save o --vrml sub/o --height-field O"), 0);
}

TEST_F(BatchOptions, ThePictureOfTheSceneIsAnOutput) {
  std::filesystem::create_directory(Path("sub"));
  const std::string photo = "model.grid --iterations 0 --image photo.bmp ";
  ExpectRefused(photo + "--vrml picture.jpg", "--vrml and the picture of --vrml are one file");
  ExpectRefused(photo + "--vrml o.wrl --save picture.jpg", "--save and the picture of --vrml are one file");
  ExpectRefused(photo + "--vrml sub/o.wrl --height-field sub/picture.jpg", "the picture of --vrml and --height-field");
  std::filesystem::copy_file(Path("photo.bmp"), Path("picture.jpg"));
  ExpectRefused("model.grid --image picture.jpg --vrml o.wrl", "the picture of --vrml and --image are one file");
  EXPECT_EQ(Bytes("picture.jpg"), SmallBitmap());
  EXPECT_EQ(Run("model.grid --iterations 0 --vrml o.wrl --save picture.jpg"), 0) << "no picture is written";
}

TEST_F(BatchOptions, InputsStayButForTheModelItself) {
  const std::string before = Bytes("model.grid");
  for (const char* option : {"--save", "--vrml", "--height-field"})
    ExpectRefused(std::string("model.grid --image photo.bmp ") + option + " ./photo.bmp", "and --image are one file");
  for (const char* option : {"--vrml", "--height-field"})
    ExpectRefused(std::string("model.grid ") + option + " model.grid", "and MODEL are one file");
  EXPECT_EQ(Bytes("photo.bmp"), SmallBitmap());
  EXPECT_EQ(Bytes("model.grid"), before);
  EXPECT_EQ(Run("model.grid --iterations 10 --save model.grid"), 0);
  EXPECT_NE(Bytes("model.grid"), before);
}

}  // namespace
