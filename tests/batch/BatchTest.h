#pragma once

#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/ProgramRun.h"

/// relievo-batch in a directory of its own, where a model lies.
class Batch : public testing::Test {
 protected:
  Batch() { WriteText(Path("model.grid"), GridText(m_Model.m_Grid)); }

  std::filesystem::path Path(const std::string& name) const { return m_Directory.Path() / name; }
  std::string Bytes(const std::string& name) const { return BytesOf(Path(name)); }

  /// Starts the program in the directory; its exit status.
  int Run(const std::string& arguments, const std::string& before = "") const {
    return RunIn(m_Directory.Path(), before + " '" RELIEVO_BATCH "' " + arguments);
  }
  nlohmann::json Report() const { return nlohmann::json::parse(Bytes("out")); }

  CTemporaryDirectory m_Directory;
  CFullModel m_Model;
};

/// A picture of 3 by 2 pixels, all of them of one colour.
inline std::string SmallBitmap() {
  std::string bytes("BM\x4E\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x03\0\0\0\x02\0\0\0\x01\0\x18\0", 30);
  bytes.resize(54);
  for (int pixel = 0; pixel < 2; ++pixel) bytes += std::string("\x10\x80\xF0\x10\x80\xF0\x10\x80\xF0\0\0\0", 12);
  return bytes;
}
