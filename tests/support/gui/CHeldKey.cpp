#include "support/gui/CHeldKey.h"

#include <FL/x.H>

// The keys that were down at the last event, one bit per key code; the toolkit declares it in none of its headers.
extern "C" char fl_key_vector[32];

CHeldKey::CHeldKey(int key) : m_iCode(XKeysymToKeycode(fl_display, static_cast<KeySym>(key))) { Set(true); }

CHeldKey::~CHeldKey() { Set(false); }

void CHeldKey::Set(bool down) const {
  char& byte = fl_key_vector[m_iCode / 8];
  const int bit = 1 << (m_iCode % 8);
  byte = static_cast<char>(down ? byte | bit : byte & ~bit);
}
