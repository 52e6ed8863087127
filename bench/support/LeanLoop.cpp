#include "support/LeanLoop.h"

#include <cmath>
#include <cstdlib>

#include "solver/CCompressedRows.h"
#include "solver/CEnergyTerms.h"
#include "solver/GridTerms.h"

CLeanLoop::CLeanLoop(int level) {
  CBenchModel model(level);
  const std::size_t n = model.m_Order.Count();
  CEnergyTerms terms;
  CCompressedRows rows;
  AddGridTerms(model.m_Tree, model.m_Order, terms);
  terms.Assemble(n, rows);
  m_auRowStart.push_back(0);
  std::vector<std::uint32_t> numberAt(n);
  for (std::uint32_t k = 0; k < n; ++k) numberAt[model.m_Order.ScanOf(k)] = k;
  for (std::size_t k = 0; k < n; ++k) {
    const std::uint32_t row = model.m_Order.ScanOf(k);
    for (const std::uint32_t column : rows.Columns(row)) m_auColumns.push_back(numberAt[column]);
    m_afValues.insert(m_afValues.end(), rows.Values(row).begin(), rows.Values(row).end());
    m_auRowStart.push_back(static_cast<std::uint32_t>(m_auColumns.size()));
  }
  for (std::size_t k = 4; k < n; ++k) {
    const int code = model.m_Order.LevelCode(k);
    const int s = 1 << (level - std::abs(code) / 2);
    const int c = model.m_Order.ColumnOf(k);
    const int r = model.m_Order.RowOf(k);
    const auto add = [&](int column, int row) {
      m_auParents.push_back(static_cast<std::uint32_t>(model.m_Order.NumberOf(model.m_Lattice.Index(column, row))));
    };
    if (code % 2 != 0 || code < 0) add(c, r - s);
    if (code % 2 != 0 || code > 0) add(c + s, r);
    if (code % 2 != 0 || code < 0) add(c, r + s);
    if (code % 2 != 0 || code > 0) add(c - s, r);
    if (k + 1 == n || std::abs(model.m_Order.LevelCode(k + 1)) != std::abs(code)) {
      m_auPassEnd.push_back(static_cast<std::uint32_t>(k + 1));
    }
  }
  m_afX = model.m_afX;
  m_afU.resize(n);
  m_afS.resize(n);
  m_afR.resize(n);
  Apply(m_afX, m_afR);
  for (double& r : m_afR) r = -r;
  Apply(m_afR, m_afS);
  m_afP = m_afR;
  m_afQ = m_afS;
  for (std::size_t i = 0; i < n; ++i) {
    m_fRho += m_afR[i] * m_afS[i];
    m_fPi += m_afQ[i] * m_afQ[i];
  }
}

double CLeanLoop::BytesPerIteration() const {
  const auto n = static_cast<double>(Size());
  const double transforms = 2.0 * (static_cast<double>(m_auParents.size()) * 4 + 2 * n * 8);
  const double product = static_cast<double>(m_afValues.size()) * 12 + n * (4 + 8);
  const double updates = n * 8 * (6 + 2 + 6);
  return transforms + product + updates;
}

void CLeanLoop::Apply(const std::vector<double>& v, std::vector<double>& out) {
  double* u = m_afU.data();
  for (std::size_t k = 0; k < 4; ++k) u[k] = v[k];
  const std::uint32_t* parent = m_auParents.data();
  std::uint32_t k = 4;
  for (std::size_t pass = 0; pass < m_auPassEnd.size(); ++pass) {
    if (pass % 2 == 0) {
      for (; k < m_auPassEnd[pass]; ++k, parent += 2) u[k] = v[k] + 0.5 * (u[parent[0]] + u[parent[1]]);
    } else {
      for (; k < m_auPassEnd[pass]; ++k, parent += 4) {
        u[k] = v[k] + 0.25 * (u[parent[0]] + u[parent[1]] + u[parent[2]] + u[parent[3]]);
      }
    }
  }
  const std::uint32_t* column = m_auColumns.data();
  const double* value = m_afValues.data();
  for (std::size_t row = 0; row < out.size(); ++row) {
    double sum = 0.0;
    for (std::uint32_t e = m_auRowStart[row]; e < m_auRowStart[row + 1]; ++e) sum += value[e] * u[column[e]];
    out[row] = sum;
  }
  for (std::size_t pass = m_auPassEnd.size(); pass-- > 0;) {
    const std::uint32_t first = pass == 0 ? 4 : m_auPassEnd[pass - 1];
    if (pass % 2 == 0) {
      while (k > first) {
        const double share = 0.5 * out[--k];
        parent -= 2;
        out[parent[0]] += share;
        out[parent[1]] += share;
      }
    } else {
      while (k > first) {
        const double share = 0.25 * out[--k];
        parent -= 4;
        for (int p = 0; p < 4; ++p) out[parent[p]] += share;
      }
    }
  }
}

void CLeanLoop::Iterate() {
  const std::size_t n = Size();
  const double alpha = m_fRho / m_fPi;
  for (std::size_t i = 0; i < n; ++i) {
    m_afX[i] += alpha * m_afP[i];
    m_afR[i] -= alpha * m_afQ[i];
  }
  Apply(m_afR, m_afS);
  double rho = 0.0;
  for (std::size_t i = 0; i < n; ++i) rho += m_afS[i] * m_afR[i];
  const double beta = rho / m_fRho;
  m_fRho = rho;
  m_fPi = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    m_afP[i] = beta * m_afP[i] + m_afR[i];
    m_afQ[i] = beta * m_afQ[i] + m_afS[i];
    m_fPi += m_afQ[i] * m_afQ[i];
  }
}
