#include "ui/window/CHelpLine.h"

#include <array>
#include <cstdio>

void CHelpLine::SetCurrentHelp(int index) {
  m_iCurrent = index;
  RestoreHelp();
}

void CHelpLine::ReplaceCurrentHelp(int index) {
  const bool shown = m_iShown == m_iCurrent;
  m_iCurrent = index;
  if (shown) Show(index);
}

void CHelpLine::ShowHelp(int index) {
  if (index == m_iAsked) return;
  m_iAsked = index;
  Show(index);
}

void CHelpLine::RestoreHelp() {
  m_iAsked = kOther;
  Show(m_iCurrent);
}

void CHelpLine::Show(int index) {
  m_iShown = index;
  value(HelpTextOf(index));
}

void CHelpLine::ShowMessage(const std::string& text) {
  m_iShown = kOther;
  value(text.c_str());
}

void CHelpLine::ShowFrameRecorded(int frame) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), HelpTextOf(HelpText::kFrameRecorded), frame);
  m_iShown = HelpText::kFrameRecorded;
  m_iAsked = kOther;
  value(text.data());
}
