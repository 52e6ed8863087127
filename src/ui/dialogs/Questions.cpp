#include "ui/dialogs/Questions.h"

#include <FL/fl_ask.H>

bool AskYesNo(const char* question) { return fl_choice("%s", fl_no, fl_yes, nullptr, question) == 1; }
