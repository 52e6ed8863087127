#pragma once

#include <functional>

/// What the panel of values asks of the program around it.
class ValuesCommands {
 public:
  virtual ~ValuesCommands() = default;

  /// The next constraint that is clicked gives the selected one its height; `ended` is called then, or once nothing
  /// waits for a click any more.
  virtual void TakeNextHeight(std::function<void()> ended) = 0;
  /// Nothing waits for a click any more.
  virtual void DropNextHeight() = 0;
  /// A number of the selected constraint has been changed.
  virtual void ValueChanged() = 0;
  /// Whether a group of constraints is being chosen.
  virtual bool IsChoosing() const = 0;
};
