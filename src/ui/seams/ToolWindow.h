#pragma once

#include <functional>
#include <utility>

struct CProject;

/// A window of its own that a button of the main window opens and closes.
class ToolWindow {
 public:
  ToolWindow() = default;
  virtual ~ToolWindow() = default;
  ToolWindow(const ToolWindow&) = delete;
  ToolWindow& operator=(const ToolWindow&) = delete;

  /// Whether the window is on the screen; showing it, also when it is there already; taking it away.
  virtual bool IsOpen() const = 0;
  virtual void Open() = 0;
  virtual void Close() = 0;
  /// Another picture has been loaded.
  virtual void PictureLoaded() {}
  /// The grid has been reinitialised or read from a file.
  virtual void GridReplaced() {}
  /// What a project keeps of the tool is to be added to one, and taken out of one that has been opened.
  virtual void AddTo(CProject& /*project*/) const {}
  virtual void TakeFrom(const CProject& /*project*/) {}

  /// What is to be done when the window has closed.
  void OnClosed(std::function<void()> action) { m_Closed = std::move(action); }

 protected:
  /// To be called once the window has closed, no matter what closed it.
  void ReportClosed() {
    if (m_Closed) m_Closed();
  }

 private:
  std::function<void()> m_Closed;
};
