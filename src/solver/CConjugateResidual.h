#pragma once

#include <cmath>
#include <span>
#include <vector>

class CScaledSystem;

/// The conjugate-residual iteration [Stiefel1955] on a symmetric, possibly indefinite or singular system
/// [Luenberger1970].
///
/// The four vectors (direction p, its image q, residual r, its image s; N + M entries each) persist between ticks, so
/// that the iteration goes on where it stopped until the next `Restart`.
class CConjugateResidual {
 public:
  /// Below this, |r . A r| or |A p . A p| ends the iteration.
  static constexpr double kBreakdown = 1e-30;

  /// What a call of `Step` has done.
  enum class Outcome {
    Stepped,   ///< one iteration done
    SmallRho,  ///< |r . A r| is below kBreakdown: nothing was changed
    SmallPi,   ///< |A p . A p| is below kBreakdown: nothing was changed
  };

  /// Starts anew from x (N coefficients) and l (M multipliers) towards the right-hand sides d of the constraints:
  /// r = (0, d) - A (x, l), p = r, q = s = A r, all of them scaled.
  void Restart(CScaledSystem& system, std::span<const double> x, std::span<const double> multipliers,
               std::span<const double> targets);
  /// Takes up the residual that x and l really have [VanDerVorstYe2000]: rounding makes the recurrence believe in a
  /// smaller one. The iteration then seeks the correction that this residual asks for; the restart's figures stay.
  void Refresh(CScaledSystem& system, std::span<const double> x, std::span<const double> multipliers,
               std::span<const double> targets);
  /// One iteration: improves x in place and adds to the way that the scaled multipliers have gone so far (M entries).
  Outcome Step(CScaledSystem& system, std::span<double> x, std::span<double> way);

  /// Whether the recurrence is still among the finite numbers. After a step that left them, x and the way may not be.
  bool IsFinite() const { return std::isfinite(m_fRho) && std::isfinite(m_fPi); }
  /// |r . A r| / (|r| |A r|) at a restart: 0 for a residual that the system turns into one perpendicular to it. Not a
  /// number for a residual that vanishes.
  double Symmetry() const { return std::abs(m_fRho) / (m_fStartNorm * std::sqrt(m_fPi)); }
  /// Whether the next step would find |r . A r| or |A p . A p| below kBreakdown.
  bool HasBrokenDown() const;
  double Rho() const { return m_fRho; }
  /// q . q of the coming step.
  double Pi() const { return m_fPi; }
  // On a singular system that contradicts itself r cannot vanish, and A r only falls to the level of rounding. Two
  // signs together say that it has come there:
  /// Steps since |A r| was last halved.
  int StepsSinceProgress() const { return m_iSinceProgress; }
  /// |A r| / |r| now, as a share of the largest value that it has had since the system last changed its size.
  double ImageShare() const { return m_fGain / m_fLargestGain; }
  /// Length of the residual now and at the last restart.
  double ResidualNorm() const;
  double StartNorm() const { return m_fStartNorm; }

 private:
  void TakeUpResidual(CScaledSystem& system, std::span<const double> x, std::span<const double> multipliers,
                      std::span<const double> targets);
  double Advance(double beta);
  void NoteProgress(double image, double residual);

  std::vector<double> m_afP;
  std::vector<double> m_afQ;
  std::vector<double> m_afR;
  std::vector<double> m_afS;
  double m_fRho = 0.0;
  double m_fPi = 0.0;
  double m_fStartNorm = 0.0;
  double m_fBestImage = 0.0;  ///< |A r|^2 when it was last found halved
  int m_iSinceProgress = 0;
  double m_fGain = 0.0;  ///< |A r| / |r|
  double m_fLargestGain = 0.0;
};
