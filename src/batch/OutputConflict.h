#pragma once

#include <string>

#include "batch/CBatchOptions.h"

/// Which outputs of a run would overwrite each other or an input; empty where none would. However a file is named or
/// linked, it is one file. Only the model may be written over, and only by the model.
std::string OutputConflict(const CBatchOptions& options);

/// Which export of a run would overwrite the file that a project had its photograph from; empty where none would.
std::string PhotographConflict(const CBatchOptions& options, const std::string& photograph);
