#pragma once

#include "drawing/CCamera.h"
#include "projects/CProject.h"

/// The camera that the views of a project keep, with the divisors of its drags from `camera`, of which nothing else
/// stays.
CCamera CameraOf(const CProjectViews& views, CCamera camera = {});

/// The inverse: the views keep the camera but for the divisors of its drags, and all else that they have.
void KeepCamera(const CCamera& camera, CProjectViews& views);
