#pragma once

#include <vector>

#include <rapidcheck.h>

#include "support/TreeBuilders.h"

/// Random changes of a tree for RapidCheck, which shrinks a failing series to few changes near the origin.
template <>
struct rc::Arbitrary<CTreeOp> {
  static Gen<CTreeOp> arbitrary() {
    using Kind = CTreeOp::Kind;
    return gen::build<CTreeOp>(gen::set(&CTreeOp::m_Kind, gen::element(Kind::kMakeLeaf, Kind::kMark, Kind::kSplit)),
                               gen::set(&CTreeOp::m_uLevel, gen::inRange(0U, 16U)),
                               gen::set(&CTreeOp::m_uColumn, gen::inRange(0U, 1024U)),
                               gen::set(&CTreeOp::m_uRow, gen::inRange(0U, 1024U)),
                               gen::set(&CTreeOp::m_uFlags, gen::inRange(1U, CellFlag::kMarkable + 1)));
  }
};

/// A series of about `count` changes, whatever size RapidCheck has come to.
inline rc::Gen<std::vector<CTreeOp>> GenTreeOps(int count = 16) {
  return rc::gen::resize(count, rc::gen::arbitrary<std::vector<CTreeOp>>());
}
