#pragma once

#include <string>
#include <vector>

#include "ui/seams/ViewHost.h"

/// The window around the views, reduced to a memory of what a panel asked of it.
class RecordingViews : public ViewHost {
 public:
  void PauseSolverForCommand() override {}
  void ResumeAfterCommand() override {}
  void ShowHelp(HelpText::Index /*index*/) override {}
  void RestoreHelp() override {}
  void RedrawImageView() override { ++m_iImageRedraws; }
  void RedrawModelView() override { ++m_iModelRedraws; }
  void FocusImageView() override {}
  bool ShowsDebugZone() const override { return false; }
  void ShowPointerInside(bool /*inside*/) override {}
  void ShowInfluence(double /*value*/) override {}
  void ShowNumber(int /*number*/, int /*levelCode*/) override {}
  void ShowMessage(const std::string& text) override { m_asMessages.push_back(text); }
  void Notice(const char* text) override { m_asNotices.emplace_back(text); }

  int m_iImageRedraws = 0;
  int m_iModelRedraws = 0;
  std::vector<std::string> m_asMessages;
  std::vector<std::string> m_asNotices;
};
