#pragma once

#include <iosfwd>

#include "model/CSketch.h"

/// Reads the sections of a grid file before the heights into a sketch, and logs each step.
///
/// Where something else stands than was expected, the sketch holds what was read by then, and is for the rest that of a
/// new grid. A record with a number that is not finite is left out. Counts are taken as limits: nothing is allocated
/// that the text does not hold.
class CSketchReader {
 public:
  /// The level that the tree begins with, whatever base level the file names: that one is for new grids.
  static constexpr int kStartLevel = 5;

  /// `in` must have been prepared for the reading of numbers.
  explicit CSketchReader(std::istream& in);

  /// Rectangle, constraints and levels.
  void ReadHead();
  /// The wanted subdivision, which follows a whole head.
  void ReadSubdivision();

  /// What was expected where something else stands; null while all is well.
  const char* Expected() const { return m_pExpected; }
  bool HasRectangle() const { return m_bRectangle; }
  bool HasHead() const { return m_bHead; }
  /// Whether the file ends with the subdivision and had no levels before it.
  bool IsOldFormat() const { return m_bOldFormat; }
  /// Whether a record has been left out.
  bool IsDamaged() const { return m_bDamaged; }
  CSketch& Sketch() { return m_Sketch; }
  const CSketch& Sketch() const { return m_Sketch; }

 private:
  // Whether the section is as expected.
  bool ReadRectangle();
  bool ReadConstraints();
  bool ReadLevels();
  template <typename ReadRecord>
  bool ReadList(int& header, ReadRecord readRecord);

  bool ReadPoint();
  bool ReadCurve();
  bool Miss(const char* expected);

  std::istream& m_In;
  CSketch m_Sketch;
  const char* m_pExpected = nullptr;
  bool m_bRectangle = false;
  bool m_bHead = false;
  bool m_bOldFormat = false;
  bool m_bDamaged = false;
};
