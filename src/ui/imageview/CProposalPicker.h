#pragma once

class CTearProposals;
class CViewMapping;

/// What the mouse does to tears that are proposed over the picture: a press of the left button within reach of one
/// takes or drops it.
class CProposalPicker {
 public:
  /// The proposals from now on, which must live as long as they are shown; null for none.
  void Show(CTearProposals* proposals);
  const CTearProposals* Shown() const { return m_pProposals; }

  /// Whether the toolkit's current event belongs to a proposal, and to nothing else.
  bool Handle(int event, const CViewMapping& mapping);
  /// The release that follows is not for a proposal.
  void EndDrag() { m_bHeld = false; }

 private:
  bool Press(const CViewMapping& mapping);

  CTearProposals* m_pProposals = nullptr;
  bool m_bHeld = false;  ///< the button that has switched one
};
