#pragma once

#include <csignal>

#include <sys/resource.h>

/// For as long as it lives no file of this process grows beyond `bytes`, as on a disk that is full.
class CFullDisk {
 public:
  explicit CFullDisk(rlim_t bytes) : m_Handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &m_Old);
    const rlimit limit{bytes, m_Old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~CFullDisk() {
    setrlimit(RLIMIT_FSIZE, &m_Old);
    std::signal(SIGXFSZ, m_Handler);
  }
  CFullDisk(const CFullDisk&) = delete;
  CFullDisk& operator=(const CFullDisk&) = delete;

 private:
  rlimit m_Old{};
  void (*m_Handler)(int);
};
