#pragma once

/// The drawing state that both views start from, set in the current OpenGL context: smooth blended lines, black
/// background of alpha 0, smooth shading, shiny front material, depth test, material colour from the current colour.
void SetOpenGLDefaults();
