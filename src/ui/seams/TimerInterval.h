#pragma once

/// Delay of the first solver tick after a start or a resume and period of animation playback, in seconds.
inline double g_fTimerInterval = 0.02;
