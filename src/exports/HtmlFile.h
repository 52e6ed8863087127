#pragma once

#include <optional>
#include <string>

#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"

/// What a page is made of.
struct CPageContents {
  std::string m_Title;        ///< any text
  std::string m_Glb;          ///< the model, with its picture
  std::string m_PictureName;  ///< what the picture is called in the switch of the page
  CEncodedPicture m_Relit;    ///< shown in its place; empty for none
};

/// An HTML page that shows a model by itself, without a network. Nothing where the model has more than the 300 MB that
/// browsers take within a page; unfinished where the steps do not go on. Throws std::bad_alloc.
std::optional<std::string> HtmlOf(const CPageContents& contents, const CExportSteps& steps = {});
