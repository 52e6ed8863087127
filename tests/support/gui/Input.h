#pragma once

#include <string>

#include "support/gui/CScreenshot.h"

// Real mouse and keyboard events, which reach whatever window lies under the pointer or has the focus. They are on
// their way to it when a function returns; a test waits for what they bring about. Places are on the screen, buttons
// are 1 left, 2 middle, 3 right; `keys` are names of X keys joined by "+" ("Escape", "ctrl+g", "alt+shift+o").
// Everything throws std::runtime_error where the event cannot be sent.

void PressKey(const std::string& keys);
/// Milliseconds pass between one key and the next.
void TypeText(const std::string& text, int delay = 12);
void MovePointer(CPixel place);
void Click(CPixel place, int button = 1);
void PressButton(int button);
void ReleaseButton(int button);
void HoldKeys(const std::string& keys);
void LetGoOfKeys(const std::string& keys);

/// Press at one place, motion in ten steps, release at the other, with `held` (keys, may be empty) down all the while.
void Drag(CPixel from, CPixel to, int button = 1, const std::string& held = "");
