#pragma once

class CCntrCtrlList;
class CEnergyTerms;
class CInterpolation;
class CQuadTree;

/// The smoothness energy along the fairness curves, in the heights by scan position of the surface's order.
///
/// Along each segment stand its two nodes and its crossings with the borders of active leaves. With P1 one of the
/// crossings, P0 and P2 the places before and after it, d1 and d2 their distances from it in model units and w the
/// weight there, the term is w / ((d1 d2)^2 (d1 + d2) / 2) (d2 z(P0) - (d1 + d2) z(P1) + d1 z(P2))^2. A node's weight
/// is the mean of its left curvature and torsion, linear in between. A crossing at no distance from its neighbour is no
/// place of its own; a place outside the model, and a weight that is not positive and finite, make no term. Linear in
/// the number of leaves crossed.
void AddCurveTerms(const CCntrCtrlList& curves, const CQuadTree& tree, const CInterpolation& surface,
                   CEnergyTerms& terms);
