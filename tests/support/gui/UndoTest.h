#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/FileBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"

/// Base of tests that take back with the real keys of the running program what a hand has done.
class UndoTest : public RunTest {
 protected:
  // On the photograph.
  static constexpr CPixel kHeight{120, 100};
  static constexpr CPixel kSlope{480, 100};
  static constexpr CPixel kFree{300, 300};
  static constexpr CPixel kNode{250, 220};

  CPixel At(CPixel pixel) const { return m_User.OnPhotograph(pixel); }
  void Over(CPixel pixel) const {
    MovePointer(At(pixel));
    m_Program.Rests();
  }
  /// A height, a slope and a curve, as all that follows finds them.
  void Prepare() const {
    m_User.ClickOn(Control::PositionConstraint);
    PlaceHeight(kHeight, 43);
    m_User.ClickOn(Control::NormalConstraint);
    m_User.ClickAt(At(kSlope));
    m_User.ClickOn(Control::CurveConstraint);
    m_User.ClickOn(Control::PositionDiscontinuity);
    m_User.ClickAt(At({120, 250}));
    m_User.ClickAt(At(kNode));
    Over({420, 240});
    m_User.Type("Return");
  }
  /// The latest step is this one, and no longer there after that.
  void UndoIs(const std::string& name) const {
    const std::string line = "Undone: " + name;
    const std::size_t before = m_User.Times(line);
    m_User.Type("ctrl+z");
    EXPECT_TRUE(m_User.Reads(line, before)) << name;
  }
  void RedoIs(const std::string& name, const std::string& keys) const {
    const std::string line = "Done again: " + name;
    const std::size_t before = m_User.Times(line);
    m_User.Type(keys);
    EXPECT_TRUE(m_User.Reads(line, before)) << name;
  }
  /// A saved file without the heights of the surface, and without those kept with slopes.
  std::string Saved(const std::string& name, bool lights = false) const {
    m_User.ChooseEntry(MenuTitle::File, 3);
    EXPECT_TRUE(m_User.ChooseFile("please input grid file name", File(name)) && m_User.Answer(lights));
    EXPECT_TRUE(m_Program.Rests());
    std::istringstream file(BytesOf(File(name)));
    std::string kept;
    bool heights = false;
    for (std::string line; std::getline(file, line);) {
      if (line == "Z" || line == "N") heights = line == "Z";
      if (heights) continue;
      std::istringstream words(line);
      std::vector<std::string> fields(std::istream_iterator<std::string>(words), {});
      const bool slope = fields.size() == 6 && (fields[5] == "2" || fields[5] == "6");
      if (slope) line = fields[0] + ' ' + fields[1] + ' ' + fields[3] + ' ' + fields[4] + ' ' + fields[5];
      kept += line + '\n';
    }
    return kept;
  }
};
