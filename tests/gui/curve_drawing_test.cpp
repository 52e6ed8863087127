#include "support/gui/ToolkitTest.h"
