#pragma once

struct CConstraintLine;
struct CFloatingRegion;

/// What the window of the report asks of the program around it.
class ReportCommands {
 public:
  virtual ~ReportCommands() = default;

  /// Selects the constraint and has both views show it in their middle.
  virtual void ShowConstraint(const CConstraintLine& line) = 0;
  /// Has both views show the middle of the region.
  virtual void ShowRegion(const CFloatingRegion& region) = 0;
};
