#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Splits a command line into words at blanks. Within '...' everything stands for itself; within "..." a backslash
/// makes the next quote or backslash plain; elsewhere it makes any character plain. Nothing else has a meaning. Nothing
/// where a quote stays open or a backslash is the last character.
std::optional<std::vector<std::string>> CommandWords(std::string_view line);

/// The word with each key (such as "{image}") that stands in it replaced by its value, in which nothing is replaced.
std::string WithFilledPlaces(std::string_view word, const std::map<std::string, std::string>& values);
