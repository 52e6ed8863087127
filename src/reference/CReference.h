#pragma once

#include <memory>
#include <optional>
#include <string>

#include "reference/CDepthMap.h"

/// Which curve makes heights of the values of a map.
enum class ReferenceResponse {
  Automatic,  ///< bent where that foretells the heights markedly better
  Straight,   ///< scale and offset
  Bent,       ///< a term of second degree besides, where there are heights enough for it
};

/// How a model takes its reference.
struct CReferenceSettings {
  double m_fStrength = 0.8;       ///< 0 to 1; 0 is as no map
  bool m_bNearIsBright = true;    ///< larger values are nearer; heights that say otherwise are believed more
  bool m_bZeroIsUnknown = false;  ///< 0 in a map of whole numbers is no value
  ReferenceResponse m_Response = ReferenceResponse::Automatic;
  /// Heights from the lowest to the highest value, model units, where the heights do not tell; a third of the model's
  /// larger side where there is none.
  std::optional<double> m_SceneDepth;
  bool operator==(const CReferenceSettings&) const = default;
};

/// A depth map that a model follows, and how. Copies share the map.
struct CReference {
  std::shared_ptr<const CDepthMap> m_pMap;  ///< null for none
  std::string m_File;                       ///< where it was read from
  CReferenceSettings m_Settings;

  /// Whether it counts for anything.
  bool IsActive() const { return m_pMap != nullptr && m_Settings.m_fStrength > 0; }
  /// Whether both have the same map, and the same values in it.
  bool HasSameValues(const CReference& other) const {
    return m_Settings.m_bZeroIsUnknown == other.m_Settings.m_bZeroIsUnknown &&
           (m_pMap == other.m_pMap || (m_pMap != nullptr && other.m_pMap != nullptr && *m_pMap == *other.m_pMap));
  }
  /// To the user.
  bool operator==(const CReference& other) const {
    return HasSameValues(other) && m_File == other.m_File && m_Settings == other.m_Settings;
  }
};
