#pragma once

/// A key that is down, for the toolkit of this process, for as long as the object lives. Needs an open display.
class CHeldKey {
 public:
  /// `key` as the toolkit names it.
  explicit CHeldKey(int key);
  ~CHeldKey();
  CHeldKey(const CHeldKey&) = delete;
  CHeldKey& operator=(const CHeldKey&) = delete;

 private:
  void Set(bool down) const;

  int m_iCode;
};
