// The overlays over the photograph.

#include <optional>
#include <string>
#include <utility>

#include "codecs/PngBytes.h"
#include "editing/CCommandPause.h"
#include "io/CFileReplacement.h"
#include "ui/imageview/CImageView.h"
#include "ui/window/CImageViewUI.h"

namespace {

bool WriteBytes(const std::string& file, const std::string& bytes) {
  if (bytes.empty()) return false;
  CFileReplacement replacement(file);
  if (!replacement.IsOpen()) return false;
  replacement.Write({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  return replacement.Commit();
}

}  // namespace

void CImageViewUI::ShowOverlay(std::shared_ptr<const COverlay> overlay) {
  ImageView().ShowOverlay(std::move(overlay));
  Menu().Enable(MenuEntry::SaveOverlay, ImageView().Overlay() != nullptr);
}

void CImageViewUI::SaveOverlay() {
  if (ImageView().Overlay() == nullptr) return;
  const CCommandPause pause(m_Solver);
  const std::optional<std::string> file = ChooseFile({.m_pTitle = "give a name for the overlay:",
                                                      .m_pPattern = "*.png",
                                                      .m_Kind = "overlay",
                                                      .m_bSaves = true,
                                                      .m_Start = Files().Proposal(".png")});
  if (!file.has_value()) return;
  const std::optional<CPicture> picture = ImageView().DrawnPicture();
  const bool saved = picture.has_value() && Files().Write(*file, [&] { return WriteBytes(*file, PngOf(*picture)); });
  if (saved) return TellSaved(*file);
  Notice(("Unable to save the overlay in " + *file).c_str());
}

void CImageViewUI::ModelSaved() {
  if (m_OverlayEntries) m_OverlayEntries->SurfaceSaved();
}
