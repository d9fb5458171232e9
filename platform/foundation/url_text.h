#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace foundation {

// The text of a URL and its parts. Only what stands between host and query counts as a path; a URL like
// mailto:a@b, or one whose path is empty, has none.
class UrlText {
 public:
  UrlText() = default;
  // Nothing for text that no URL is: empty, or with a character that would have to be escaped, an incomplete escape or
  // a second number sign.
  static std::optional<UrlText> parse(std::string text);
  // file://, with an empty host. The path is absolute bytes; a slash at its end is kept.
  static UrlText ofFile(std::string_view path);

  [[nodiscard]] const std::string& text() const { return text_; }
  // Empty when there is none.
  [[nodiscard]] std::string_view scheme() const { return view().substr(0, schemeSize_); }
  [[nodiscard]] std::string_view path() const { return view().substr(pathBegin_, pathEnd_ - pathBegin_); }
  [[nodiscard]] bool isFile() const;
  // With scheme but no slash after it, so that the rest means something to that scheme only.
  [[nodiscard]] bool isOpaque() const { return opaque_; }
  // The bytes of the path of a file on this computer, without a slash at the end. Nothing for another URL, or when an
  // escape stands for a byte that no file name has: zero or a slash.
  [[nodiscard]] std::optional<std::string> filePath() const;

  // Unescaped; "/" for a path of slashes only, empty without a path. Slashes at the end don't count.
  [[nodiscard]] std::string lastComponent() const;
  // Up to and with the slash before the last component; what follows the path stays. Where no name can be taken away
  // ("", "." and ".."), "../" is added. Nothing without a path.
  [[nodiscard]] std::optional<UrlText> withoutLastComponent() const;
  // With the component escaped, slashes in it too. Nothing without a path.
  [[nodiscard]] std::optional<UrlText> withComponent(std::string_view component, bool isDirectory) const;

 private:
  [[nodiscard]] std::string_view view() const { return text_; }
  // Where the last component begins and ends in the path.
  [[nodiscard]] std::string_view lastEscapedComponent() const;
  [[nodiscard]] UrlText withPath(std::string_view path) const;

  std::string text_;
  std::size_t schemeSize_ = 0;
  std::size_t hostBegin_ = 0;
  std::size_t hostEnd_ = 0;
  std::size_t pathBegin_ = 0;
  std::size_t pathEnd_ = 0;
  bool opaque_ = false;
};

// Every %XX as its byte; a percent sign that begins no escape stays.
std::string unescaped(std::string_view text);

}  // namespace foundation
