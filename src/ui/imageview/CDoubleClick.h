#pragma once

/// Two clicks of the left button right after each other, each on something that was there before its press: the first
/// one may make what the second one hits. A drag between them ends it.
class CDoubleClick {
 public:
  /// The toolkit's current event has been handled; `hit` tells whether the left button holds something that was there.
  void Look(int event, bool hit);
  /// Whether the button that is being let go ends one.
  bool Ends(int event);

 private:
  bool m_bHitBefore = false;  ///< the press has hit something, and nothing has been dragged since
  bool m_bSecond = false;     ///< and so had the one right before
  int m_iX = 0;               ///< where it was
  int m_iY = 0;
};
