#pragma once

#include <memory>
#include <optional>
#include <string>

#include "reference/CReference.h"

class CEditGate;
class CGridReference;

/// What a user does to the reference of a model. What would change nothing is no edit.
class CReferenceEdits {
 public:
  /// Both must outlive the edits.
  CReferenceEdits(CGridReference& reference, CEditGate& gate) : m_Reference(reference), m_Gate(gate) {}

  /// Takes a map, read from a file of that name, in place of what there is; the settings stay. Posts kRebuild.
  void Load(std::shared_ptr<const CDepthMap> map, const std::string& file);
  /// No map, and the settings of the beginning. Posts kRebuild.
  void Remove();
  /// Held to 0..1. Posts kRestart.
  void SetStrength(double strength);
  /// See CReferenceSettings. These post kRestart, and `SetZeroIsUnknown` kRebuild.
  void SetNearIsBright(bool bright);
  void SetResponse(ReferenceResponse response);
  void SetZeroIsUnknown(bool unknown);
  /// Above 0, or nothing for that of the model's size.
  void SetSceneDepth(std::optional<double> depth);

 private:
  CGridReference& m_Reference;
  CEditGate& m_Gate;
};
