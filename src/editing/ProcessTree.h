#pragma once

#include <sys/types.h>

/// Ends at once whatever a process has started, and what that has started, whatever groups and sessions they have made.
/// The process itself stays; it should be stopped and a subreaper, so that nothing gets away from it meanwhile.
void KillDescendants(pid_t process);
