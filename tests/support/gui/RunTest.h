#pragma once

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "drawing/CViewMapping.h"
#include "io/Bmp.h"
#include "support/GridBuilders.h"
#include "support/gui/CUser.h"

/// Base of tests that work with the whole program as a user does: the photograph of the cup is loaded, the solver
/// stopped, and files go into the program's directory.
class RunTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_User.LoadPhotograph());
    // Without constraints the solver has converged and would go on with the first one; after the recorder it does not.
    for (int click = 0; click < 2; ++click) m_User.ClickOn(Control::Recorder);
  }

  void TearDown() override {
    EXPECT_TRUE(m_Program.IsRunning()) << "ended with status " << m_Program.WaitForExit().value_or(-1);
    if (!HasFailure()) return;
    for (const std::string& line : m_Program.ConsoleLines()) std::cout << "  " << line << '\n';
  }

  std::filesystem::path File(const std::string& name) const { return m_Program.Directory() / name; }

  /// The place in the model where a pixel of the photograph lies, as the mouse finds it in the image view.
  CPlanePoint InModel(CPixel pixel) const {
    const CArea view = m_User.AreaOf(Control::ImageView);
    const CPixel place = m_User.OnPhotograph(pixel);
    CViewMapping mapping;
    mapping.SetExtent({0, 100, 0, 100});
    mapping.SetSize(view.m_iWidth, view.m_iHeight);
    return mapping.ToModel(place.m_iX - view.m_iX, place.m_iY - view.m_iY);
  }
  /// Adds a height constraint, raised by an upward drag of so many pixels, 4.3 for each model unit.
  void PlaceHeight(CPixel pixel, int up) const {
    const CPixel place = m_User.OnPhotograph(pixel);
    if (up == 0) {
      m_User.ClickAt(place);
    } else {
      m_User.DragSlowly(place, {place.m_iX, place.m_iY - up}, 1);
    }
  }

  /// Saves the model, without its lights.
  bool SaveModel(const std::string& name) const {
    m_User.ChooseEntry(MenuTitle::File, 3);
    return m_User.ChooseFile("please input grid file name", File(name)) && m_User.Answer(false) && m_Program.Rests();
  }
  /// Saves the model and reads it back here.
  bool ReadModel(CGrid& grid) const {
    return SaveModel("read.grid") && grid.Load(File("read.grid").string()) == GridFileState::Whole;
  }
  /// A frame of the image view (0) or the model view (1), shot with the menu; empty if that fails.
  CPicture Shoot(int entry, const std::string& name) const {
    m_User.ChooseEntry(MenuTitle::Shoot, entry);
    if (!m_User.ChooseFile("give a name for current frame buffer:", File(name)) || !m_Program.Rests()) return {};
    auto loaded = Global::LoadBMP(File(name).string(), 1);
    return loaded ? std::move(loaded->m_Picture) : CPicture{};
  }

  mutable CRelievo m_Program;
  CUser m_User{m_Program};
};
