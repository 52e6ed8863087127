#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

class CGrid;

/// Heights of the grid's unknowns, in their order, from heights given by lattice point (index row * n + column).
///
/// An unknown without a height of its own lies where its parents put it: its coefficient is zero. Heights of points
/// that are no unknowns are left aside. Nothing if a place occurs twice. Both spans have the same length. Linear in the
/// number of unknowns times the level where any has no height.
std::optional<std::vector<double>> HeightsByPlace(const CGrid& grid, std::span<const std::size_t> places,
                                                  std::span<const double> heights);

/// Whether the places hold every point that the grid's wanted subdivision alone puts in use: the corners of the model,
/// and the midpoints and the centre of each cell that is split. Linear in both.
bool HoldSubdivision(const CGrid& grid, std::span<const std::size_t> places);
