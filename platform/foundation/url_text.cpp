#include "platform/foundation/url_text.h"

#include <algorithm>
#include <utility>

#include <strings.h>

namespace foundation {

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool isLetterOrDigit(char c) { return isLetter(c) || (c >= '0' && c <= '9'); }

bool isOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

// -1 for what is no hexadecimal digit.
int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool isEscape(std::string_view text, std::size_t at) {
  return text[at] == '%' && at + 2 < text.size() && hexValue(text[at + 1]) >= 0 && hexValue(text[at + 2]) >= 0;
}

bool isUrl(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isLetterOrDigit(text[i]) && !isOneOf(text[i], "-_.!~*'();/?:@&=+$,#") && !isEscape(text, i)) return false;
  }
  return !text.empty() && std::ranges::count(text, '#') <= 1;
}

std::size_t sizeOfScheme(std::string_view text) {
  const auto end = std::ranges::find_if_not(text, [](char c) { return isLetterOrDigit(c) || isOneOf(c, "+-."); });
  if (end == text.end() || *end != ':' || !isLetter(text.front())) return 0;
  return static_cast<std::size_t>(end - text.begin());
}

// Slashes that separate components stay, those within one don't.
std::string escaped(std::string_view bytes, std::string_view separators) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  for (const char c : bytes) {
    if (isLetterOrDigit(c) || isOneOf(c, "-_.!~*'():@&=+$,") || isOneOf(c, separators)) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
  }
  return result;
}

}  // namespace

std::string unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isEscape(text, i)) {
      result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::optional<UrlText> UrlText::parse(std::string text) {
  if (!isUrl(text)) return std::nullopt;
  UrlText url;
  url.text_ = std::move(text);
  const std::string_view all = url.text_;
  url.schemeSize_ = sizeOfScheme(all);
  std::size_t at = url.schemeSize_ == 0 ? 0 : url.schemeSize_ + 1;
  url.opaque_ = at != 0 && !all.substr(at).starts_with('/');
  if (url.opaque_) {
    url.hostBegin_ = url.hostEnd_ = url.pathBegin_ = url.pathEnd_ = all.size();
    return url;
  }
  if (all.substr(at).starts_with("//")) {
    url.hostBegin_ = at + 2;
    at = std::min(all.find_first_of("/?#", url.hostBegin_), all.size());
  } else {
    url.hostBegin_ = at;
  }
  url.hostEnd_ = url.pathBegin_ = at;
  url.pathEnd_ = std::min(all.find_first_of("?#", at), all.size());
  return url;
}

UrlText UrlText::ofFile(std::string_view path) { return *parse("file://" + escaped(path, "/")); }

bool UrlText::isFile() const {
  const std::string_view own = scheme();
  return own.size() == 4 && strncasecmp(own.data(), "file", 4) == 0;
}

std::optional<std::string> UrlText::filePath() const {
  const std::string host = text_.substr(hostBegin_, hostEnd_ - hostBegin_);
  if (!isFile() || (!host.empty() && strcasecmp(host.c_str(), "localhost") != 0)) return std::nullopt;
  std::string result = unescaped(path());
  if (!result.starts_with('/') || result.find('\0') != std::string::npos) return std::nullopt;
  if (std::ranges::count(result, '/') != std::ranges::count(path(), '/')) return std::nullopt;
  while (result.size() > 1 && result.back() == '/') result.pop_back();
  return result;
}

std::string_view UrlText::lastEscapedComponent() const {
  const std::string_view whole = path();
  const std::string_view kept = whole.substr(0, whole.find_last_not_of('/') + 1);
  return kept.substr(kept.rfind('/') + 1);
}

std::string UrlText::lastComponent() const {
  const std::string_view component = lastEscapedComponent();
  return component.empty() && !path().empty() ? "/" : unescaped(component);
}

UrlText UrlText::withPath(std::string_view path) const {
  return *parse(text_.substr(0, pathBegin_).append(path).append(text_.substr(pathEnd_)));
}

std::optional<UrlText> UrlText::withoutLastComponent() const {
  const std::string_view whole = path();
  if (whole.empty()) return std::nullopt;
  const std::string_view component = lastEscapedComponent();
  if (component.empty() || component == "." || component == "..") {
    return withPath(std::string(whole).append(whole.ends_with('/') ? "../" : "/../"));
  }
  const std::string_view kept = whole.substr(0, static_cast<std::size_t>(component.data() - whole.data()));
  return withPath(kept.empty() ? "./" : kept);
}

std::optional<UrlText> UrlText::withComponent(std::string_view component, bool isDirectory) const {
  if (path().empty()) return std::nullopt;
  std::string longer(path());
  if (!longer.ends_with('/')) longer += '/';
  longer += escaped(component, "");
  if (isDirectory && !longer.ends_with('/')) longer += '/';
  return withPath(longer);
}

}  // namespace foundation
