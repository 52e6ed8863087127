#include <iostream>
#include <ostream>

#include "base/CTerminationSignals.h"
#include "base/Console.h"
#include "batch/CBatchOptions.h"
#include "batch/CBatchRun.h"

int main(int argc, char** argv) {
  const CParsedOptions parsed = ParseOptions(argc, argv);
  if (parsed.m_ExitStatus.has_value()) return *parsed.m_ExitStatus;
  // Standard output is the report's.
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(parsed.m_Options.m_bQuiet ? nowhere : std::cerr);
  CTerminationSignals signals;
  return CBatchRun(parsed.m_Options, signals).Run();
}
