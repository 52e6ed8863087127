#include "editing/CRecovery.h"

#include <algorithm>
#include <ctime>
#include <new>
#include <optional>
#include <utility>

#include <sys/timerfd.h>
#include <unistd.h>

#include "projects/ProjectFile.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// One edit seldom comes alone.
constexpr auto kAfterEdit = 1s;
constexpr auto kBetweenWritings = 15s;
constexpr auto kAfterDrag = 250ms;

constexpr const char* kNoMemory = "What is not saved cannot be kept for the next start: there is not enough memory.";

// With nothing placed and no light set there is nothing to lose, and what was kept before may be worth more.
bool IsWork(const CProject& project) {
  const CDocument& document = project.m_Model.m_Document;
  const CSketch& sketch = document.m_Sketch;
  return !sketch.m_Points.empty() || !sketch.m_Curves.empty() || !sketch.m_PendingCurve.IsIdle() ||
         document.m_RemovedLights != CLightSet::Removed() || document.m_AddedLights != CLightSet::Added();
}

bool WriteInto(CRecoveryFolder& folder, const CProject& project, std::int64_t time) {
  try {
    return folder.Write(ProjectBytes(project, time));
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace

CRecovery::CRecovery(std::filesystem::path folder, CProgram program)
    : m_Program(std::move(program)),
      m_Folder(std::move(folder)),
      m_iTimer(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {}

CRecovery::~CRecovery() {
  m_Writing.Wait();
  if (m_iTimer >= 0) close(m_iTimer);
}

void CRecovery::Wake(CClock::duration delay) {
  // A time of 0 would switch it off.
  const auto nanoseconds = std::max<std::int64_t>(1, std::chrono::nanoseconds(delay).count());
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  itimerspec time{};
  time.it_value.tv_sec = nanoseconds / kPerSecond;
  time.it_value.tv_nsec = nanoseconds % kPerSecond;
  m_bAwake = timerfd_settime(m_iTimer, 0, &time, nullptr) == 0;
}

void CRecovery::NoteChanges(std::uint64_t changes) {
  if (changes == m_uChanges) return;
  m_uChanges = changes;
  if (!m_bAwake) Wake(std::max<CClock::duration>(kAfterEdit, m_NextWriting - CClock::now()));
}

void CRecovery::NoteSaved(std::uint64_t changes, CDocument document) {
  m_uChanges = changes;
  m_uSaved = changes;
  DiscardAside(document);
  m_Saved = std::move(document);
  for (const std::filesystem::path& file : m_aTakenUp) m_Folder.Discard(file);
  m_aTakenUp.clear();
  // What is being written goes when it is done.
  if (!m_Writing.IsBusy()) m_Folder.Forget();
}

void CRecovery::Attend() {
  std::uint64_t times = 0;
  if (read(m_iTimer, &times, sizeof(times)) == sizeof(times)) m_bAwake = false;
  if (const std::optional<bool> written = m_Writing.Take()) Finish(*written);
  if (m_bAwake || m_Writing.IsBusy() || !IsUnsaved() || m_uWritten == m_uChanges) return;
  if (m_Program.m_IsHeld()) return Wake(kAfterDrag);
  if (const CClock::time_point now = CClock::now(); now < m_NextWriting) return Wake(m_NextWriting - now);
  Begin();
}

// Nothing where there is nothing to write: no work, or what a file of the user's holds.
std::optional<CProject> CRecovery::TakeWork() {
  m_uWritten = m_uChanges;
  CProject project = m_Program.m_Take();
  if (project.m_Model.m_Document == m_Saved) {
    m_uSaved = m_uChanges;
    m_Folder.Forget();
    return {};
  }
  if (!IsWork(project)) return {};
  m_Taken = project.m_Model.m_Document;
  return project;
}

void CRecovery::Begin() {
  try {
    std::optional<CProject> project = TakeWork();
    if (!project.has_value()) return;
    m_NextWriting = CClock::now() + kBetweenWritings;
    m_Writing.Begin(
        [this, work = std::move(*project), time = std::time(nullptr)] { return WriteInto(m_Folder, work, time); });
  } catch (const std::bad_alloc&) {
    m_NextWriting = CClock::now() + kBetweenWritings;
    NotKept(kNoMemory);
    Wake(kBetweenWritings);
  }
}

void CRecovery::Finish(bool written) {
  if (written) DiscardAside(m_Taken);
  if (!IsUnsaved()) m_Folder.Forget();
  if (!written)
    NotKept("What is not saved cannot be kept for the next start: its folder is missing, full or read-only.");
}

// It will be tried again in its time.
void CRecovery::NotKept(const char* text) {
  m_uWritten = m_uSaved;
  if (!std::exchange(m_bTold, true)) m_Program.m_Tell(text);
}

void CRecovery::End() {
  if (const std::optional<bool> written = m_Writing.Wait()) Finish(*written);
  if (!IsUnsaved() || m_uWritten == m_uChanges) return;
  try {
    if (const std::optional<CProject> project = TakeWork(); project.has_value())
      Finish(WriteInto(m_Folder, *project, std::time(nullptr)));
  } catch (const std::bad_alloc&) {
    NotKept(kNoMemory);
  }
}

void CRecovery::SetAside() {
  if (const std::optional<bool> written = m_Writing.Wait()) Finish(*written);
  PutBack();
  if (fs::path file = m_Folder.SetAside(); !file.empty()) m_aAside.emplace_back(std::move(file), std::move(m_Taken));
  // The next work does not wait for its time because of this one.
  m_NextWriting = {};
}

// What is held elsewhere need not be kept.
void CRecovery::DiscardAside(const CDocument& held) {
  std::erase_if(m_aAside, [&](const auto& aside) { return aside.second == held && m_Folder.Discard(aside.first); });
}

std::vector<CUnsavedWork> CRecovery::List() {
  std::vector<CUnsavedWork> works;
  for (const std::filesystem::path& file : m_Folder.Left()) {
    const std::optional<CProjectNote> note = ReadProjectNote(file.string());
    works.push_back({file, !note.has_value(), note.value_or(CProjectNote{})});
  }
  return works;
}

bool CRecovery::TakeUp(const std::filesystem::path& file) {
  if (!m_Folder.Claim(file)) return false;
  // It is claimed throughout, so that it does not go where there are too many.
  std::erase(m_aTakenUp, file);
  End();
  SetAside();
  m_aTakenUp.push_back(file);
  return true;
}

void CRecovery::PutBack() {
  for (const std::filesystem::path& file : m_aTakenUp) m_Folder.Release(file);
  m_aTakenUp.clear();
}
