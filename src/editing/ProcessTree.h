#pragma once

/// Ends at once whatever this process has started, and what that has started, whatever groups and sessions they have
/// made, and waits for it: a second at most, as others may not be allowed to end some of it.
///
/// The process must have one thread and be a subreaper, which those come to that lose their parents. Asks for no
/// memory, so that a fork of a process with several threads may call it. Needs /proc.
void EndDescendants();
