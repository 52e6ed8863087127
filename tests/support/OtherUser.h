#pragma once

#include <functional>

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

/// Users and groups without any rights of their own have the same number on every system.
inline constexpr unsigned kNobody = 65534;

/// Calls `action` in a child process that belongs to a user who may do only what everybody may: a child of root becomes
/// nobody, any other stays who it is. Whether it answered true.
inline bool SucceedsAsOtherUser(const std::function<bool()>& action) {
  const pid_t child = fork();
  if (child == 0) {
    const bool changed = geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
    _exit(changed && action() ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
