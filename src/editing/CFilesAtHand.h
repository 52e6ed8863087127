#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "editing/CLastFolders.h"
#include "editing/CModelName.h"
#include "editing/CRecentFiles.h"

/// The files that a person works with: what the model is called, which models and pictures were open last, where
/// choosers begin, and which files this run may replace without keeping the old ones. All names are absolute.
class CFilesAtHand {
 public:
  CFilesAtHand() { KeepIn({}); }

  /// The folder of what is kept from run to run; with an empty path nothing is. What was noted before is forgotten.
  void KeepIn(const std::filesystem::path& folder);
  CRecentFiles& Recent() { return m_Recent; }
  CLastFolders& Folders() { return m_Folders; }

  /// The name of the model, and that of one which undoing an edit has brought back.
  const CModelName& Model() const { return m_Model; }
  void SetModel(const CModelName& name);
  /// The model has been read whole from a file, written to one, or replaced by one without a name.
  void ModelOpened(const CModelName& name);
  void ModelSaved(const CModelName& name);
  void ModelReplaced() { SetModel({}); }
  /// Another picture is on show; one that has come with a project.
  void PictureOpened(const std::string& file);
  void PictureCame(const std::string& file);
  /// A model and a picture are about to be opened together: the picture on show does not belong to that model.
  void LeavePicture() { m_bPictureFree = false; }

  /// Where the model is proposed to be saved under names with this suffix: under its own, or else beside the picture.
  /// Empty without either.
  std::string Proposal(const std::string& suffix) const;

  /// Has `write` write files, or some of them, and answers as it does. The first time in the run that a file is
  /// replaced which is not the one a model was read from, the old one is kept as NAME~.
  bool Write(const std::vector<std::string>& files, const std::function<bool()>& write);
  bool Write(const std::string& file, const std::function<bool()>& write) { return Write(std::vector{file}, write); }

 private:
  void NotePair();

  CModelName m_Model;
  std::string m_Picture;
  bool m_bModelFree = false;    ///< opened, and no picture since
  bool m_bPictureFree = false;  ///< opened, and no model since
  CRecentFiles m_Recent{{}};
  CLastFolders m_Folders{{}};
  std::set<std::filesystem::path> m_Known;  ///< read or written by this run, behind all links
};
