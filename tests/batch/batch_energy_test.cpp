// The energies of the report, against sums over the saved surface.

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <Eigen/Core>
#include <Eigen/QR>

#include "batch/BatchTest.h"
#include "support/DepthBuilders.h"
#include "support/DirectSolution.h"

namespace {

using Vector = Eigen::VectorXd;

constexpr int kSteps = 16;  // a side
constexpr double kStrength = 0.7;
constexpr int kRow = 6;
constexpr int kFirst = 2;
constexpr int kLast = 13;

double Wave(double u, double v) { return std::sin(5 * u) + std::cos(4 * v) * u; }

// A model over a map, with a fairness curve along points of the lattice. So far from 0 files have all digits of
// heights.
class BatchEnergy : public Batch {
 protected:
  BatchEnergy() {
    CTestGrid test(4, 4);
    for (const auto& [x, y, z] : {std::array{-2.0, 21.0, 4e3}, {3.1, 25.2, -2e3}, {9.7, 22.4, 3e3}, {11.0, 24.0, 9e3}})
      test.m_Grid.AddPtCstr(HeightCstr(x, y, z));
    CCntrCtrl& curve =
        AddCurveThrough(test.m_Grid, CurveType::kFairness, {{XOf(kFirst), YOf(kRow)}, {XOf(kLast), YOf(kRow)}});
    curve.SetAllWeights(30, 20, 0, 0);
    test.m_Grid.PerformPendingWork();
    WriteText(Path("fair.grid"), GridText(test.m_Grid));
    WriteText(Path("wave.pfm"), PfmOf(m_Map));
  }
  static double XOf(int column) { return kOblong.x0 + column * (kOblong.x1 - kOblong.x0) / kSteps; }
  static double YOf(int row) { return kOblong.y0 + row * (kOblong.y1 - kOblong.y0) / kSteps; }

  // z^T F z: along the curve the weight times the square of the second derivative, at each point but the ends.
  static double FairnessOf(const Vector& z) {
    const double step = XOf(1) - XOf(0);
    double sum = 0.0;
    for (int column = kFirst + 1; column < kLast; ++column) {
      const Eigen::Index k = kRow * (kSteps + 1) + column;
      sum += 25 * std::pow(z[k - 1] - 2 * z[k] + z[k + 1], 2) / std::pow(step, 3);
    }
    return sum;
  }
  // The map at the points, brought to heights by a line through those of the constraints.
  Vector HeightsOfMap(const CGrid& grid) const {
    const CDepthReading reading(m_Map, false);
    const auto value = [&](double u, double v) { return reading.Bilinear(reading.ColumnOf(u), reading.RowOf(v)); };
    const CPtCstrList& points = grid.Constraints().Points();
    Eigen::MatrixXd line(static_cast<Eigen::Index>(points.size()), 2);
    Vector heights(line.rows());
    Eigen::Index row = 0;
    for (const CPtCstr& point : points) {
      line.row(row) << 1, value((point.m_fX - kOblong.x0) / (kOblong.x1 - kOblong.x0),
                                (point.m_fY - kOblong.y0) / (kOblong.y1 - kOblong.y0));
      heights[row++] = point.m_fZ;
    }
    const Vector fit = line.colPivHouseholderQr().solve(heights);
    Vector shape((kSteps + 1) * (kSteps + 1));
    for (int k = 0; k < shape.size(); ++k) {
      const int column = k % (kSteps + 1);
      const int rowOfPoint = k / (kSteps + 1);
      shape[k] = fit[0] + fit[1] * value(column / double{kSteps}, rowOfPoint / double{kSteps});
    }
    return shape;
  }

  CDepthMap m_Map = DepthMapOf(20, 12, Wave);
};

// As they stand in the report and as the sums have them.
TEST_F(BatchEnergy, AreThoseOfTheSurface) {
  for (const char* options : {"", " --reference-depth wave.pfm --reference-strength 0.7"}) {
    ASSERT_EQ(Run(std::string("fair.grid --save o.grid --report json") + options), 0) << Bytes("err");
    CTestGrid test(4, 4);
    ASSERT_EQ(ReadText(test.m_Grid, Bytes("o.grid")), GridFileState::Whole);
    const std::vector<double> heights =
        InUse(test.m_Grid.Surface().Lattice(), test.m_Grid.Surface().Lattice().Heights());
    ASSERT_EQ(heights.size(), (kSteps + 1) * (kSteps + 1));
    const Vector z = Eigen::Map<const Vector>(heights.data(), static_cast<Eigen::Index>(heights.size()));
    const Eigen::MatrixXd g(CDirectSystem(test.m_Grid.Surface().Tree()).H());
    const double fairness = FairnessOf(z);
    const double energy = (z.dot(g * z) + fairness) / 2;
    EXPECT_GT(fairness, 0.001 * energy);
    EXPECT_NEAR(Report()["energy"].get<double>(), energy, 1e-6 * energy) << options;
    if (*options == '\0') continue;
    const Vector apart = z - kStrength * HeightsOfMap(test.m_Grid);
    const double reference = (apart.dot(g * apart) + fairness) / 2;
    EXPECT_LT(reference, 0.9 * energy);
    EXPECT_NEAR(Report()["reference_energy"].get<double>(), reference, 1e-6 * reference);
  }
}

}  // namespace
