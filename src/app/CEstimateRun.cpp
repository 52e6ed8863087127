#include "app/CEstimateRun.h"

#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/seams/CBusyCursor.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr const char* kSetting = "estimator";
// Seconds between two looks at what it does.
constexpr double kPeriod = 0.1;

}  // namespace

CEstimateRun::CEstimateRun(CImageViewUI& window, const CGrid& grid,
                           std::function<void(CReadDepthMap map, const std::string& file)> take)
    : m_Window(window), m_Grid(grid), m_Take(std::move(take)) {}

CEstimateRun::~CEstimateRun() { Fl::remove_timeout(cb_Look, this); }

std::string CEstimateRun::CommandLine() const { return m_Window.Settings().Text(kSetting).value_or(""); }

void CEstimateRun::Begin(const std::string& commandLine) {
  const CTextureImages& textures = m_Grid.Relighting().Textures();
  if (m_Estimate.IsRunning() || !textures.HasPicture()) return;
  m_Window.Settings().Set({{kSetting, commandLine}});
  std::error_code ignored;
  m_Photograph = std::filesystem::absolute(m_Window.ImageView().TextureFileName(), ignored);
  m_Outcome.clear();
  std::string trouble;
  try {
    const CBusyCursor busy;
    trouble = m_Estimate.Begin(commandLine, textures.Photograph());
  } catch (const std::bad_alloc&) {
    trouble = "There is not enough memory to write the photograph for the estimator.";
  }
  if (!trouble.empty()) return Tell(trouble);
  Fl::add_timeout(kPeriod, cb_Look, this);
}

void CEstimateRun::Cancel() {
  if (!m_Estimate.IsRunning()) return;
  Fl::remove_timeout(cb_Look, this);
  m_Estimate.Cancel();
  Tell("The estimator was cancelled.");
}

CEstimateFields::CState CEstimateRun::State() const {
  const bool running = m_Estimate.IsRunning();
  return {m_Grid.Relighting().Textures().HasPicture(), running, running ? m_Estimate.LastLine() : m_Outcome};
}

void CEstimateRun::cb_Look(void* run) { static_cast<CEstimateRun*>(run)->Look(); }

// What has been written waits for the end of a drag or a dialog.
void CEstimateRun::Look() {
  std::optional<CEstimate::CResult> result;
  if (Fl::pushed() == nullptr && Fl::modal() == nullptr && Fl::grab() == nullptr) result = m_Estimate.Attend();
  if (!result.has_value()) return Fl::repeat_timeout(kPeriod, cb_Look, this);
  if (!result->m_Trouble.empty()) return Tell(result->m_Trouble);
  m_Outcome = m_Estimate.LastLine();
  m_Take(std::move(result->m_Map), m_Photograph + " (estimate)");
}

void CEstimateRun::Tell(const std::string& text) {
  m_Outcome = text;
  m_Window.Tell(text);
}
