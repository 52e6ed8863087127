#pragma once

/// Has every press of a mouse button in a window preceded by a movement of the mouse to where it was made. The toolkit
/// hands on a movement only when it has read all events that wait, so after the presses among them, and the views judge
/// a press by what the mouse hovered over. Call once.
void SendMovesBeforePresses();
