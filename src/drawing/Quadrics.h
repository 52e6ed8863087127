#pragma once

// Round shapes in the current OpenGL context, in the current colour. A direction (dx, dy, dz) need not have unit
// length; one straight along z, downwards too, and one of length 0 count as +z. An error of the quadric library ends
// the program.

/// Outline of a cylinder from (x, y, z) along a direction: the marker of a light.
void draw_cylinder(double x, double y, double z, double dx, double dy, double dz, double length, int slices,
                   double radius);

/// Filled ring about (x, y, z), square to a direction: all within `radius` of the point but not within `radius -
/// thickness`.
void draw_disc(double x, double y, double z, double dx, double dy, double dz, double radius, double thickness);
