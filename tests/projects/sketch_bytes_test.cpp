// The lists of a document as bytes: nothing of them is lost, and bytes that are none of theirs are told.

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "projects/SketchBytes.h"
#include "quadtree/CSaveQuadT.h"
#include "support/ConsoleCapture.h"
#include "support/ProjectBuilders.h"

namespace {

constexpr int kDepth = 4;

}  // namespace

RC_GTEST_PROP(SketchBytesProperty, EveryListComesBack, ()) {
  const ConsoleCapture console;
  const CSketch sketch = *AnySketch();
  CPtCstrList points;
  RC_ASSERT(ReadBytes(BytesOf(sketch.m_Points), points));
  RC_ASSERT(points == sketch.m_Points);
  CCntrCtrlList curves;
  RC_ASSERT(ReadBytes(BytesOf(sketch.m_Curves), curves));
  RC_ASSERT(curves == sketch.m_Curves);
  CPendingCurve pending;
  RC_ASSERT(ReadBytes(BytesOf(sketch.m_PendingCurve), pending));
  RC_ASSERT(pending == sketch.m_PendingCurve);
  RC_ASSERT(pending.ClosesOnValidate() == sketch.m_PendingCurve.ClosesOnValidate());
  for (const CSubdivisionBits& bits : sketch.m_aSubdivisions) {
    CSubdivisionBits back;
    RC_ASSERT(ReadBytes(BytesOf(bits), sketch.m_iMaxLevel, back));
    RC_ASSERT(back == bits);
  }
}

RC_GTEST_PROP(SketchBytesProperty, BytesThatWereCutOrLengthenedAreTold, ()) {
  const ConsoleCapture console;
  const CSketch sketch = *AnySketch();
  const std::string whole = BytesOf(sketch.m_Curves);
  CCntrCtrlList curves;
  RC_ASSERT(!ReadBytes(whole.substr(0, *rc::gen::inRange<std::size_t>(0, whole.size())), curves));
  curves.clear();
  RC_ASSERT(!ReadBytes(whole + '\0', curves));
  const std::string bits = BytesOf(sketch.m_aSubdivisions.front());
  CSubdivisionBits back;
  RC_ASSERT(!ReadBytes(bits.substr(0, *rc::gen::inRange<std::size_t>(0, bits.size())), sketch.m_iMaxLevel, back));
  RC_ASSERT(!ReadBytes(bits + '\0', sketch.m_iMaxLevel, back));
}

TEST(SketchBytesTest, CountsBeyondTheBytesTakeNoMemory) {
  std::string bytes(40, '\0');
  bytes.replace(0, 8, 8, '\x7f');
  CPtCstrList points;
  EXPECT_FALSE(ReadBytes(bytes, points));
  EXPECT_TRUE(points.empty());
  CSubdivisionBits bits;
  EXPECT_FALSE(ReadBytes(bytes, kDepth, bits));
}

TEST(SketchBytesTest, NumbersThatAreNotFiniteAreTold) {
  for (const double number : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    CPtCstrList points;
    points.Add({number, 1});
    CPtCstrList back;
    EXPECT_FALSE(ReadBytes(BytesOf(points), back));
  }
}

TEST(SketchBytesTest, ASubdivisionThatIsNoneOfItsDepthIsTold) {
  CSubdivisionRecord record(kDepth);
  const std::string bytes = BytesOf(CSubdivisionBits(record));
  CSubdivisionBits bits;
  EXPECT_TRUE(ReadBytes(bytes, kDepth, bits));
  EXPECT_FALSE(ReadBytes(bytes, kDepth - 1, bits)) << "nodes are left over";
  EXPECT_FALSE(ReadBytes(bytes, kDepth + 1, bits)) << "nodes are missing";
  EXPECT_TRUE(ReadBytes(BytesOf(CSubdivisionBits()), kDepth, bits));
  EXPECT_EQ(bits, CSubdivisionBits());
}

TEST(SketchBytesTest, TheNumbersAreTheSameOnEveryMachine) {
  CPtCstrList points;
  points.Add({1.0, -2.0, PtCstrKind::kNormal, 0.0, 0.5, -0.0});
  const std::string bytes = BytesOf(points);
  ASSERT_EQ(bytes.size(), 8 + 44U);
  EXPECT_EQ(bytes.substr(0, 24), std::string("\1\0\0\0\0\0\0\0\0\0\0\0\0\0\xf0\x3f\0\0\0\0\0\0\0\xc0", 24));
  EXPECT_EQ(bytes.substr(48), std::string("\2\0\0\0", 4));
}
