#include <iostream>
#include <ostream>

#include "base/Console.h"
#include "picture/CModelPicture.h"
#include "picture/CPictureOptions.h"

int main(int argc, char** argv) {
  const CParsedPictureOptions parsed = ParsePictureOptions(argc, argv);
  if (parsed.m_ExitStatus.has_value()) return *parsed.m_ExitStatus;
  // A file manager that wants a small picture of a model does not want to know how it is read.
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  return CModelPicture(parsed.m_Options).Make();
}
