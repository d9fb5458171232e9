#pragma once

#include "platform/contacts/file_descriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace contacts {

// A text, or a part of one, that whoever has it keeps in memory.
class SharedText {
 public:
  SharedText() = default;
  explicit SharedText(std::string text)
      : whole_(std::make_shared<const std::string>(std::move(text))), text_(*whole_) {}

  // Of a view of the text.
  [[nodiscard]] SharedText part(std::string_view part) const { return {whole_, part}; }
  // As long as somebody has the text.
  [[nodiscard]] std::string_view view() const { return text_; }

 private:
  SharedText(std::shared_ptr<const std::string> whole, std::string_view text) : whole_(std::move(whole)), text_(text) {}

  std::shared_ptr<const std::string> whole_;
  std::string_view text_;
};

// Texts that stay in a file until somebody asks for one of them.
class UnreadTexts {
 public:
  // The hash is that of all of them.
  UnreadTexts(std::shared_ptr<const FileDescriptor> file, std::int64_t place, std::size_t size, std::uint64_t hash)
      : file_(std::move(file)), place_(place), size_(size), hash_(hash) {}

  // All of them; nothing when the file doesn't have them any more. Any thread.
  [[nodiscard]] std::optional<SharedText> read() const;

 private:
  mutable std::mutex lock_;
  mutable std::shared_ptr<const FileDescriptor> file_;  // null once they are read
  mutable std::optional<SharedText> texts_;
  const std::int64_t place_;
  const std::size_t size_;
  const std::uint64_t hash_;
};

struct TextStretch {
  std::uint32_t begin = 0;
  std::uint32_t size = 0;
};

// A card's text, in memory or not yet read.
class CardText {
 public:
  CardText() = default;
  explicit CardText(std::string text, TextStretch name = {}) : text_(SharedText(std::move(text))), name_(name) {}
  // A part of all texts.
  CardText(std::shared_ptr<const UnreadTexts> all, TextStretch part, TextStretch name)
      : text_(Part{std::move(all), part}), name_(name) {}

  // Nothing when the file that it was in doesn't have it any more. Any thread.
  [[nodiscard]] std::optional<SharedText> read() const;
  // Where in it the fields of the person's name are, one after another. Empty where that takes more than to look there.
  [[nodiscard]] TextStretch name() const { return name_; }

 private:
  struct Part {
    std::shared_ptr<const UnreadTexts> all;
    TextStretch stretch;
  };

  std::variant<SharedText, Part> text_;
  TextStretch name_;
};

}  // namespace contacts
