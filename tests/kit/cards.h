#pragma once

#include <string>
#include <string_view>
#include <vector>

// A record of the contacts folder that a test starts with: a file of one card.
struct Card {
  std::string uid;
  std::string lines;  // between the version and the end, each ended by a line feed
};

// Further lines are written as they are.
Card person(std::string_view first, std::string_view last, std::string_view uid = "",
            const std::vector<std::string>& lines = {});
// Members are told by their uids.
Card group(std::string_view name, std::string_view uid = "", const std::vector<std::string>& members = {});
