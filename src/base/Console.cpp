#include "base/Console.h"

#include <iostream>

namespace {

std::ostream*& Sink() {
  thread_local std::ostream* sink = &std::cout;
  return sink;
}

}  // namespace

std::ostream& Console() { return *Sink(); }

CConsoleRedirect::CConsoleRedirect(std::ostream& target) : m_pPrevious(Sink()) { Sink() = &target; }

CConsoleRedirect::~CConsoleRedirect() { Sink() = m_pPrevious; }
