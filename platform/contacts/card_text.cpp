#include "platform/contacts/card_text.h"

#include "platform/contacts/files.h"

namespace contacts {

std::optional<SharedText> UnreadTexts::read() const {
  const std::scoped_lock guard(lock_);
  if (file_) {
    std::string bytes(size_, '\0');
    if (readAt(*file_, place_, bytes) && contentHash(bytes) == hash_) texts_ = SharedText(std::move(bytes));
    file_.reset();
  }
  return texts_;
}

std::optional<SharedText> CardText::read() const {
  if (const auto* inMemory = std::get_if<SharedText>(&text_)) return *inMemory;
  const Part& part = std::get<Part>(text_);
  const std::optional<SharedText> all = part.all->read();
  if (!all) return std::nullopt;
  return all->part(all->view().substr(part.stretch.begin, part.stretch.size));
}

}  // namespace contacts
