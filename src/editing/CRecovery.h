#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "editing/CBackgroundTask.h"
#include "editing/CRecoveryFolder.h"
#include "projects/CProject.h"

/// Work of an earlier run, or of another program, that no file holds.
struct CUnsavedWork {
  std::filesystem::path m_File;
  bool m_bDamaged = false;
  CProjectNote m_Note;  ///< empty for a damaged one
};

/// Keeps the work in a file of its own while no file of the user's holds it, so that whatever ends the program loses
/// little of it.
///
/// A second after an edit, and every 15 seconds while edits go on, a copy of the work is taken, which another thread
/// writes; not during a drag. The descriptors wake whatever looks after the object, by whatever means the program has
/// for that. Nothing is ever asked of the user, and nothing stops the program: what cannot be written is told once.
class CRecovery {
 public:
  /// What the keeping asks of the program.
  struct CProgram {
    std::function<CProject()> m_Take;                ///< a copy of the work
    std::function<bool()> m_IsHeld;                  ///< whether a drag is under way
    std::function<void(const std::string&)> m_Tell;  ///< a line for the console
  };

  /// Keeps the files in `folder`, see CRecoveryFolder.
  CRecovery(std::filesystem::path folder, CProgram program);
  ~CRecovery();
  CRecovery(const CRecovery&) = delete;
  CRecovery& operator=(const CRecovery&) = delete;

  /// Becomes readable when `Attend` is to be called: at a time, and when a writing is done. -1 where the system has
  /// none left.
  int TimerDescriptor() const { return m_iTimer; }
  int DoneDescriptor() const { return m_Writing.Descriptor(); }
  /// Does what is due.
  void Attend();

  /// The work has been changed so many times since the program began. To be called often; does nothing where the number
  /// is the same.
  void NoteChanges(std::uint64_t changes);
  /// A file of the user's holds this document, which is the work as it is after so many changes. Undone to it the work
  /// is saved again.
  void NoteSaved(std::uint64_t changes, CDocument document);
  /// The program ends, or other work may take the place of this: what no file holds is written now; else nothing is
  /// left behind.
  void End();
  /// Other work has taken the place of this: what was written of it since it was saved stays for the next start, unless
  /// the user comes back to it. What was taken up belongs to nobody again.
  void SetAside();

  /// The work that can be taken up, the newest first.
  std::vector<CUnsavedWork> List();
  /// Takes one up in place of the present work, which is set aside: it stays until a file of the user's holds what has
  /// become of it, and is offered to no other program. False where another has been faster.
  bool TakeUp(const std::filesystem::path& file);
  /// What was taken up has been given up again: it belongs to nobody.
  void PutBack();
  /// Deletes one for good; whether it is gone.
  bool Discard(const std::filesystem::path& file) { return m_Folder.Discard(file); }

 private:
  using CClock = std::chrono::steady_clock;

  void Wake(CClock::duration delay);
  std::optional<CProject> TakeWork();
  void Begin();
  void Finish(bool written);
  void DiscardAside(const CDocument& held);
  void NotKept(const char* text);
  bool IsUnsaved() const { return m_uChanges != m_uSaved; }

  CProgram m_Program;
  CRecoveryFolder m_Folder;
  CBackgroundTask m_Writing;
  int m_iTimer;
  std::uint64_t m_uChanges = 0;
  std::uint64_t m_uSaved = 0;    ///< the changes that a file of the user's holds
  std::uint64_t m_uWritten = 0;  ///< those that were in the copy taken last
  CClock::time_point m_NextWriting{};
  bool m_bAwake = false;  ///< the timer has been set
  bool m_bTold = false;
  std::vector<std::filesystem::path> m_aTakenUp;
  std::optional<CDocument> m_Saved;  ///< what a file of the user's holds
  CDocument m_Taken;                 ///< of the copy taken last
  /// Files of work that other work has taken the place of, and what they hold.
  std::vector<std::pair<std::filesystem::path, CDocument>> m_aAside;
};
