#pragma once

#include <string>
#include <string_view>

#include "constraints/CCntrCtrlList.h"
#include "constraints/CPendingCurve.h"
#include "constraints/CPtCstrList.h"
#include "quadtree/CSubdivisionBits.h"

// The lists of a sketch as bytes, in full precision (docs/file-format.md has the records). What is highlighted,
// selected or without a row is not kept. Readers answer false for bytes that such a list does not have, and for numbers
// that are not finite; the target then holds what was read by then.

/// Point constraints.
std::string BytesOf(const CPtCstrList& points);
bool ReadBytes(std::string_view bytes, CPtCstrList& points);

/// Curves; their parallels are those of no curve until they are updated.
std::string BytesOf(const CCntrCtrlList& curves);
bool ReadBytes(std::string_view bytes, CCntrCtrlList& curves);

/// The curve in progress.
std::string BytesOf(const CPendingCurve& curve);
bool ReadBytes(std::string_view bytes, CPendingCurve& curve);

/// A wanted subdivision, eight nodes a byte. The bits must be those of a whole tree of `depth`, or none.
std::string BytesOf(const CSubdivisionBits& bits);
bool ReadBytes(std::string_view bytes, int depth, CSubdivisionBits& bits);
