#pragma once

/// While such an object lives, the mouse over the program's windows shows that it is busy: for work that takes seconds
/// and lets no event in. Objects may nest; the last one that goes brings the arrow back.
class CBusyCursor {
 public:
  /// `wanted` false: as if there were no such object.
  explicit CBusyCursor(bool wanted = true);
  ~CBusyCursor();
  CBusyCursor(const CBusyCursor&) = delete;
  CBusyCursor& operator=(const CBusyCursor&) = delete;

  /// Whether any such object lives.
  static bool IsShown() { return s_iObjects > 0; }

 private:
  static inline int s_iObjects = 0;
  bool m_bWanted;
};
