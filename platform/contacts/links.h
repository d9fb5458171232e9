#pragma once

#include "platform/contacts/stored_card.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace contacts {

// A line with the UID of another card of the same person. It links both, whichever of them has it.
inline constexpr std::string_view kLinkLine = "X-ABLINK";

// Which cards are linked, over however many others.
class Links {
 public:
  void add(const StoredCard& card);
  // The UIDs of all that are linked with the card of that UID, which comes first; some may be of cards that are gone.
  [[nodiscard]] std::vector<std::string> linkedWith(const std::string& uid) const;

 private:
  std::unordered_map<std::string, std::vector<std::string>> others_;
};

}  // namespace contacts
