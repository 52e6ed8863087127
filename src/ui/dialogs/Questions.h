#pragma once

#include <string>
#include <string_view>

/// `text` for a label of the toolkit, which would take an "@" for the beginning of a symbol: each is doubled.
std::string LabelText(std::string_view text);

/// The toolkit's yes/no question, which the program waits for; true only for yes.
bool AskYesNo(const char* question);
