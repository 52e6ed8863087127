#pragma once

#include <array>
#include <cstdint>

#include "drawing/DisplayFlags.h"
#include "ui/window/CMainMenu.h"

/// A menu entry that shows or hides something in one of the views; one for both views has a row for each.
struct CFlagEntry {
  MenuEntry m_Entry;
  std::uint32_t m_uFlag;
  bool m_bModelView;
  bool m_bRedrawsBoth;
};

inline constexpr auto kFlagEntries = std::to_array<CFlagEntry>({
    {MenuEntry::ImageGrid, ImageFlag::kGrid, false, false},
    {MenuEntry::ImagePicture, ImageFlag::kImage, false, false},
    {MenuEntry::ImagePoints, ImageFlag::kPointConstraints, false, false},
    {MenuEntry::ImageCurves, ImageFlag::kCurves, false, false},
    {MenuEntry::FreezeMap, ImageFlag::kFreezeMap, false, true},
    {MenuEntry::DiscontinuityTexels, ImageFlag::kDiscontinuityTexels, false, true},
    {MenuEntry::ModelGrid, ModelFlag::kGrid, true, false},
    {MenuEntry::ModelTexture, ModelFlag::kTexturedModel, true, false},
    {MenuEntry::ModelPoints, ModelFlag::kPointConstraints, true, false},
    {MenuEntry::ModelCurves, ModelFlag::kCurves, true, false},
    {MenuEntry::CellNormals, ModelFlag::kCellNormals, true, true},
    {MenuEntry::PointNormals, ModelFlag::kPointNormals, true, true},
    {MenuEntry::TexelNormals, ModelFlag::kTexelNormals, true, true},
    {MenuEntry::ClosedTears, ModelFlag::kClosedTears, true, false},
    {MenuEntry::BehindTears, ModelFlag::kBehindTears, true, false},
    {MenuEntry::KeepProportions, ImageFlag::kProportions, false, false},
    {MenuEntry::KeepProportions, ModelFlag::kProportions, true, false},
    {MenuEntry::DiscontinuityGap, ImageFlag::kDiscontinuityGap, false, false},
    {MenuEntry::DiscontinuityEdges, ImageFlag::kDiscontinuityEdges, false, false},
});
