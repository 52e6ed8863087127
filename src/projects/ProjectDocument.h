#pragma once

#include <cstdint>
#include <string>

#include "projects/CProject.h"

// The text of a project file, document.json: all of a project but its lists of numbers and its photograph.

/// Version of the format that is written; later ones are not read.
inline constexpr int kProjectVersion = 1;

/// The text for a project written at a time; `photograph` is the name of its member, empty where the file is only
/// named.
std::string DocumentText(const CProject& project, std::int64_t time, const std::string& photograph);

/// What a text has come to.
enum class DocumentState {
  Sound,
  Newer,    ///< of a later version
  Foreign,  ///< not of a project file
  Damaged,  ///< of one, but a value is missing, of another kind or out of range
};

/// What a text holds.
struct CDocumentText {
  DocumentState m_State = DocumentState::Foreign;
  int m_iVersion = 0;
  CProject m_Project;  ///< with its surface's mode and its solver's counter, but no numbers of them
  CProjectNote m_Note;
  std::string m_Photograph;  ///< name of the member; empty for none
  // Of the map of the reference, which has a member of its own; 0 for none.
  int m_iReferenceWidth = 0;
  int m_iReferenceHeight = 0;
  int m_iReferenceBits = 0;
};

/// Reads a text. Never throws but std::bad_alloc.
CDocumentText ReadDocumentText(const std::string& text);
