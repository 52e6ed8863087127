#include "ui/window/CHelpLine.h"

#include <array>
#include <cstdio>

void CHelpLine::SetCurrentHelp(int index) {
  m_iCurrent = index;
  ShowHelp(index);
}

void CHelpLine::ShowHelp(int index) {
  // The mouse over a control asks again at every motion.
  if (index == m_iShown && index != HelpText::kFrameRecorded) return;
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
  value(text.data());
}
