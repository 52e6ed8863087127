#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "support/gui/CRelievo.h"
#include "ui/window/Controls.h"

/// Titles of the menu bar, from left to right.
enum class MenuTitle : std::size_t { File, ImageView, ModelView, Shoot, Advanced, Edit, Inspect };

/// Somebody at the running program, with a mouse, a keyboard and a clipboard, who looks at what each step has done
/// before the next one: a step ends when the program rests. The main window must keep its first size.
class CUser {
 public:
  explicit CUser(CRelievo& program) : m_Program(program) {}

  /// The middle of a control on the screen. A picture moves some of them.
  CPixel PlaceOf(Control control) const;
  void ClickOn(Control control) const { ClickAt(PlaceOf(control)); }
  void ClickAt(CPixel place, int button = 1) const;
  void Type(const std::string& keys) const;
  /// Moves with the button and the keys (may be empty) held down, in as many steps as are asked for.
  void DragSlowly(CPixel from, CPixel to, int button, const std::string& held = "", int steps = 3) const;
  /// The part of the screen that a view takes up.
  CArea AreaOf(Control view) const;
  CScreenshot See(const CArea& area) const { return m_Program.Screen().Capture(area); }
  /// Where a pixel of the picture, counted from its upper left corner, lies in the image view at the first zoom.
  CPixel OnPhotograph(CPixel pixel) const;

  /// The middle of a title of the menu bar.
  CPixel PlaceOf(MenuTitle title) const;
  /// Chooses an entry of a menu, counted from 0 among the active ones.
  void ChooseEntry(MenuTitle title, int entry) const;
  /// The same by the letter that is underlined in it.
  void ChooseEntry(MenuTitle title, const std::string& letter) const;
  /// The file chooser of this title once it has the keyboard and its name is selected; nothing if it never is.
  std::optional<WindowId> OpenedChooser(const std::string& title) const;
  /// Answers the file chooser of this title.
  bool ChooseFile(const std::string& title, const std::filesystem::path& file) const;
  /// Answers the message or question that is open with Return for yes or Escape for no.
  bool Answer(bool yes) const;
  /// The same for the question after one line of text.
  bool AnswerText(const std::string& text) const;
  /// Loads a picture of the given size in pixels with the shortcut of the menu.
  bool LoadPicture(const std::filesystem::path& file, int width, int height);
  /// Loads the photograph of the coffee cup.
  bool LoadPhotograph();

  /// Waits until the program has written the line once more than it had `before` times.
  bool Reads(std::string_view line, std::size_t before = 0) const;
  std::size_t Times(std::string_view line) const;
  /// Waits until the window has closed.
  bool IsGone(WindowId window) const;

 private:
  /// The open message or question once it has the keyboard; nothing if none comes.
  std::optional<WindowId> FocusedQuestion() const;
  /// What the file chooser has in its field for the name.
  CScreenshot SeeName(WindowId chooser) const;

  CRelievo& m_Program;
  bool m_bPicture = false;
  int m_iPictureWidth = 1;
  int m_iPictureHeight = 1;
};
