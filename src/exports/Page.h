#pragma once

#include <string_view>

/// The page around a model, with marks between percent signs where its contents go. Made when the program is built
/// (cmake/Page.cmake).
extern const std::string_view kPage;
