#pragma once

#include <iosfwd>

class CGrid;

/// The surface as a VRML 2.0 scene: one textured face set, the height as the third coordinate.
///
/// Points are the centres of the active leaves, depth-first, then the unknowns in their order. Every leaf is a closed
/// fan of triangles around its centre through all points on its sides, counter-clockwise from above. The texture is
/// the file picture.jpg beside the scene, stretched over the whole model.
void WriteVrml(std::ostream& out, const CGrid& grid);
