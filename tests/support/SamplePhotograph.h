#pragma once

/// The photograph of the coffee cup among the samples.
inline constexpr const char* kSamplePhotograph = RELIEVO_SAMPLES "/coffee.bmp";
inline constexpr int kPhotographWidth = 600;
inline constexpr int kPhotographHeight = 400;
