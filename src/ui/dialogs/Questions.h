#pragma once

/// The toolkit's yes/no question, which the program waits for; true only for yes.
bool AskYesNo(const char* question);
