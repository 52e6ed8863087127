#pragma once

#include <iosfwd>
#include <vector>

class CSubdivisionRecord;

/// The text form of a wanted subdivision: its nodes in depth-first order, one character a token and nothing between
/// them. A leaf is "N"; a split node is "b", its four children with "v" between them, and "e". The selection is not
/// part of it.
void WriteSubdivision(std::ostream& out, const CSubdivisionRecord& record);

/// Reads it back, white space between the tokens allowed, and leaves nothing selected below what it reads. False, with
/// an unfinished console line, where another character stands than one that is due or a split node is of the finest
/// level: what was read by then stays, what follows is left in the stream.
bool ReadSubdivision(std::istream& in, CSubdivisionRecord& record);

/// A wanted subdivision in as few bits: its nodes in depth-first order, 1 for a split one and 0 for a leaf; the finest
/// level, which cannot be split, has none. The selection is not part of it.
std::vector<bool> SubdivisionBits(const CSubdivisionRecord& record);

/// The way back, to a record of the depth that the bits were taken from. Nothing is selected afterwards.
void SetSubdivision(CSubdivisionRecord& record, const std::vector<bool>& bits);
