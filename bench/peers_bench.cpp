// The solver beside what else solves the same problem: sparse factorisations of the whole system, and, where it is
// installed, the gridding program of GMT, timed as a whole process. Ten random heights at 129^2; and at 1025^2 beside a
// factorisation of the smoothness alone, with the heights as stiff springs.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <Eigen/Sparse>
#include <Eigen/SparseCholesky>
#include <Eigen/SparseLU>
#ifdef RELIEVO_HAVE_UMFPACK
#include <Eigen/UmfPackSupport>
#endif

#include "support/BenchGrid.h"
#include "support/Timing.h"

namespace {

constexpr int kLevel = 7;
constexpr int kLargeLevel = 10;
constexpr double kStiffness = 1e6;
constexpr int kHeights = 10;
constexpr std::uint32_t kSeed = 11;
constexpr double kShare = 0.01;

using Matrix = Eigen::SparseMatrix<double>;

// | H C^T | and | 0 |, over the heights by scan position.
// | C 0   |     | d |
struct CBordered {
  Matrix m_Matrix;
  Eigen::VectorXd m_Right;
};

void FormBorderedSystem(const CConstraintSystem& system, CBordered& bordered) {
  const auto n = static_cast<int>(system.UnknownCount());
  std::vector<Eigen::Triplet<double>> entries;
  for (int i = 0; i < n; ++i) {
    const auto columns = system.Smoothness().Columns(static_cast<std::size_t>(i));
    const auto values = system.Smoothness().Values(static_cast<std::size_t>(i));
    for (std::size_t e = 0; e < columns.size(); ++e) entries.emplace_back(i, static_cast<int>(columns[e]), values[e]);
  }
  const CConstraintRows& constraints = system.Constraints();
  const auto m = static_cast<int>(constraints.Count());
  bordered.m_Right = Eigen::VectorXd::Zero(n + m);
  for (int j = 0; j < m; ++j) {
    const auto columns = constraints.Rows().Columns(static_cast<std::size_t>(j));
    const auto values = constraints.Rows().Values(static_cast<std::size_t>(j));
    for (std::size_t e = 0; e < columns.size(); ++e) {
      entries.emplace_back(n + j, static_cast<int>(columns[e]), values[e]);
      entries.emplace_back(static_cast<int>(columns[e]), n + j, values[e]);
    }
    bordered.m_Right[n + j] = constraints.Targets()[static_cast<std::size_t>(j)];
  }
  bordered.m_Matrix.resize(n + m, n + m);
  bordered.m_Matrix.setFromTriplets(entries.begin(), entries.end());
}

template <typename Factorisation>
double SecondsToSolve(const CBordered& bordered, Eigen::VectorXd& solution) {
  return SecondsPerCall(1, [&] {
    Factorisation factorisation;
    factorisation.compute(bordered.m_Matrix);
    solution = factorisation.solve(bordered.m_Right);
  });
}

double SecondsToShare(int level, const Eigen::VectorXd& exact, int& iterations) {
  CBenchGrid bench(level);
  CGrid& grid = bench.Grid();
  grid.Reset();
  bench.AddHeights(kHeights, kSeed);
  const auto n = static_cast<std::size_t>(grid.Surface().ActivePointCount());
  const auto heights = exact.head(static_cast<Eigen::Index>(n));
  const double range = heights.maxCoeff() - heights.minCoeff();
  double seconds = 0.0;
  double error = 0.0;
  do {
    seconds += Seconds([&] { grid.UpdateGrid(); });
    error = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
      const double height = grid.Surface().Lattice().Heights()[grid.Surface().Order().PointAtScan(i)];
      error = std::max(error, std::abs(height - exact[static_cast<Eigen::Index>(i)]));
    }
  } while (error > kShare * range && grid.Run().IsRunning());
  iterations = grid.Solver().Counter();
  return seconds;
}

// Seconds of the whole process, 0 where the program is not installed or fails.
double SecondsOfGmt(CGrid& grid) {
  if (std::system("command -v gmt >/dev/null 2>&1") != 0) return 0.0;
  const std::filesystem::path directory = std::filesystem::temp_directory_path() / "relievo-peers-bench";
  std::filesystem::create_directories(directory);
  std::ofstream points(directory / "points.txt");
  for (const CPtCstr& c : grid.Constraints().Points()) points << c.m_fX << ' ' << c.m_fY << ' ' << c.m_fZ << '\n';
  points.close();
  const std::string command = "cd " + directory.string() +
                              " && gmt surface points.txt -R0/100/0/100 -I0.78125 -C1e-4% -Gsurface.nc >/dev/null 2>&1";
  int status = 0;
  const double seconds = SecondsPerCall(1, [&] { status = std::system(command.c_str()); });
  std::filesystem::remove_all(directory);
  return status == 0 ? seconds : 0.0;
}

// H + k C^T C, the lower triangle, and the right-hand side k C^T d.
CBordered FormStiffSystem(const CConstraintSystem& system) {
  const auto n = static_cast<int>(system.UnknownCount());
  std::vector<Eigen::Triplet<double>> entries;
  const auto add = [&](int row, int column, double value) {
    if (row >= column) entries.emplace_back(row, column, value);
  };
  for (int i = 0; i < n; ++i) {
    const auto columns = system.Smoothness().Columns(static_cast<std::size_t>(i));
    const auto values = system.Smoothness().Values(static_cast<std::size_t>(i));
    for (std::size_t e = 0; e < columns.size(); ++e) add(i, static_cast<int>(columns[e]), values[e]);
  }
  CBordered stiff;
  stiff.m_Right = Eigen::VectorXd::Zero(n);
  const CConstraintRows& constraints = system.Constraints();
  for (std::size_t j = 0; j < constraints.Count(); ++j) {
    const auto columns = constraints.Rows().Columns(j);
    const auto values = constraints.Rows().Values(j);
    for (std::size_t e = 0; e < columns.size(); ++e) {
      const auto row = static_cast<int>(columns[e]);
      stiff.m_Right[row] += kStiffness * values[e] * constraints.Targets()[j];
      for (std::size_t f = 0; f < columns.size(); ++f)
        add(row, static_cast<int>(columns[f]), kStiffness * values[e] * values[f]);
    }
  }
  stiff.m_Matrix.resize(n, n);
  stiff.m_Matrix.setFromTriplets(entries.begin(), entries.end());
  return stiff;
}

void ReportLargeGrid() {
  Eigen::VectorXd exact;
  double direct = 0.0;
  {
    CBenchGrid bench(kLargeLevel);
    bench.AddHeights(kHeights, kSeed);
    bench.Grid().PerformPendingWork();
    const CBordered stiff = FormStiffSystem(bench.Grid().Solver().System());
    direct = Seconds([&] {
      Eigen::SimplicialLDLT<Matrix> factorisation(stiff.m_Matrix);
      exact = factorisation.solve(stiff.m_Right);
    });
  }
  int iterations = 0;
  const double own = SecondsToShare(kLargeLevel, exact, iterations);
  std::printf("%d^2, %d heights, from the random start to an error of 1%% of the range: %.1f s, %d iterations\n",
              (1 << kLargeLevel) + 1, kHeights, own, iterations);
  std::printf("%-36s %8.1f s, relievo / peer %.2f\n", "Eigen SimplicialLDLT", direct, own / direct);
}

}  // namespace

int main() {
  CBenchGrid bench(kLevel);
  bench.AddHeights(kHeights, kSeed);
  bench.Grid().PerformPendingWork();
  CBordered bordered;
  FormBorderedSystem(bench.Grid().Solver().System(), bordered);
  Eigen::VectorXd exact;
  const double eigen = SecondsToSolve<Eigen::SparseLU<Matrix>>(bordered, exact);
  int iterations = 0;
  double own = SecondsToShare(kLevel, exact, iterations);
  for (int repeat = 0; repeat < 4; ++repeat) own = std::min(own, SecondsToShare(kLevel, exact, iterations));
  std::printf("129^2, %d heights, from the random start to an error of 1%% of the range: %.3f s, %d iterations\n",
              kHeights, own, iterations);
  std::printf("%-36s %8.3f s, relievo / peer %.2f\n", "Eigen SparseLU", eigen, own / eigen);
#ifdef RELIEVO_HAVE_UMFPACK
  Eigen::VectorXd solution;
  const double umfpack = SecondsToSolve<Eigen::UmfPackLU<Matrix>>(bordered, solution);
  std::printf("%-36s %8.3f s, relievo / peer %.2f\n", "UMFPACK", umfpack, own / umfpack);
#endif
  const double gmt = SecondsOfGmt(bench.Grid());
  if (gmt > 0) std::printf("%-36s %8.3f s, relievo / peer %.2f\n", "gmt surface -C1e-4% (process)", gmt, own / gmt);
  ReportLargeGrid();
}
