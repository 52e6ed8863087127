#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/CSaveOutcome.h"
#include "projects/CProject.h"

// Project files: a zip archive of a text that says what there is, of lists of numbers in full precision, of the model
// as a grid file for other programs, and of the photograph (docs/file-format.md).

/// Of the names of project files.
inline constexpr const char* kProjectSuffix = ".relievo";

/// The bytes of a project file written at a time, seconds since 1970. Touches nothing but its arguments, and may run in
/// a thread of its own. Throws std::bad_alloc.
std::vector<unsigned char> ProjectBytes(const CProject& project, std::int64_t time);

/// Writes a project file; its old contents stay until the new ones are complete.
CSaveOutcome SaveProject(const CProject& project, const std::string& filename);

/// A project, or why there is none.
struct CReadProject {
  std::optional<CProject> m_Project;
  std::string m_Trouble;  ///< what the user is to be told; empty where there is a project
};

/// Reads a project file. Nothing in it is believed: one that is damaged or forged in whatever way is no project, and
/// takes no more memory than there are bytes to explain it. The pixels of the photograph are not looked at.
CReadProject ReadProject(const std::string& filename);

/// What a list tells of a project file, without reading the work itself; nothing for what is none, or a damaged one.
std::optional<CProjectNote> ReadProjectNote(const std::string& filename);

/// Whether a file begins as project files do. Grid files, which are text, never do.
bool IsProjectFile(const std::string& filename);
