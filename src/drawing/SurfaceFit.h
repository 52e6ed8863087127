#pragma once

class CGrid;
struct CCamera;

/// Has a camera look at all of the surface, from where it looks: in a view of that proportion, whose shorter side shows
/// 2 R, with a little room around it.
void FitSurface(CCamera& camera, const CGrid& grid, double width, double height);
