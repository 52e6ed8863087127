#pragma once

class CTearProposals;

/// Draws tears that are proposed into the current context, in the plane of the picture: thin dashed lines, those that
/// are dropped pale.
void DrawProposals(const CTearProposals& proposals);
