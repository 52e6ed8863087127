#pragma once

class CGrid;

/// Has the toolkit call the solver tick of `grid` for as long as the grid is running, first after the shared timer
/// interval. Without effect while a tick is registered, so there is never more than one; `g_nSolverTimers` counts it.
/// The grid must outlive the tick.
void RegisterSolverTimer(CGrid& grid);

/// The solver tick, a timeout of the toolkit; `grid` is a `CGrid*`, with null nothing happens. Updates a running grid
/// and comes back as soon as the toolkit has looked at its events; with a stopped grid the tick ends, and
/// `g_nSolverTimers` with it.
void OnSolverTimer(void* grid);
