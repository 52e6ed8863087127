#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <sys/types.h>

#include "base/CPicture.h"
#include "support/CTemporaryDirectory.h"

/// A browser without a window and without a network, which draws with software. It is spoken to through two pipes, in
/// messages of its own protocol for developers. Ended with the object.
class CBrowser {
 public:
  /// The path of the one that is installed; empty for none.
  static std::string Program();

  /// Opens a file in a view of that many pixels, and waits until it has been read.
  CBrowser(const std::string& file, int width, int height);
  ~CBrowser();
  CBrowser(const CBrowser&) = delete;
  CBrowser& operator=(const CBrowser&) = delete;

  /// Sends a command to the page and waits for the answer, a minute at most. Throws where there is none, or an error.
  nlohmann::json Call(const std::string& method, const nlohmann::json& parameters = nlohmann::json::object());
  /// The value of an expression in the page.
  nlohmann::json Evaluate(const std::string& expression);
  /// What the page shows now.
  CPicture Shot();
  /// A mouse or a finger goes down, along a line of that many pixels and up again.
  void DragMouse(int x, int y, int dx, int dy);
  void DragFinger(int x, int y, int dx, int dy);

  /// The addresses that the page has asked for so far, but for those that hold their contents themselves.
  const std::vector<std::string>& Requests() const { return m_asRequests; }
  /// Errors and warnings of the page so far, as they stand in the console.
  const std::vector<std::string>& Complaints() const { return m_asComplaints; }

 private:
  void Start(const std::string& program);
  void Attach();
  void SendText(const std::string& message) const;
  nlohmann::json Receive();
  void Note(const nlohmann::json& event);

  CTemporaryDirectory m_Profile;
  pid_t m_Process = -1;
  int m_iToBrowser = -1;
  int m_iFromBrowser = -1;
  int m_iLastId = 0;
  bool m_bLoaded = false;
  std::string m_Session;   ///< of the page; empty before there is one
  std::string m_Received;  ///< not taken yet
  std::vector<std::string> m_asRequests;
  std::vector<std::string> m_asComplaints;
};
