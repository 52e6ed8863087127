#include "constraints/CPendingCurve.h"

void CPendingCurve::Append(double x, double y) {
  m_bIdle = false;
  CPtCstr& point = m_aPoints.emplace_back();
  point.m_fX = x;
  point.m_fY = y;
}

void CPendingCurve::Hover(double x, double y, double reach) {
  if (!m_bIdle) m_bClosedOnValidate = m_aPoints.front().IsWithinReach(x, y, reach);
}

void CPendingCurve::Drop() {
  m_bIdle = true;
  m_bClosedOnValidate = false;
  m_aPoints.clear();
}
