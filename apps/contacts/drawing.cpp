#include "apps/contacts/drawing.h"

#include "apps/contacts/text.h"
#include "host/memory_blocks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <unistd.h>

namespace contacts {
namespace {

constexpr char kRows[] = "12";                             // of the terminal that a picture takes
constexpr std::size_t kMostBytes = std::size_t{64} << 20;  // of pixels, which a terminal would take too long to get

bool isSet(const char* variable) { return std::getenv(variable) != nullptr; }

// Whether the variable is there and its value contains the text.
bool says(const char* variable, std::string_view text) {
  const char* value = std::getenv(variable);
  return value != nullptr && std::string_view(value).find(text) != std::string_view::npos;
}

// The picture as the frameworks write TIFF: low bytes first, all rows in one strip, four bytes a pixel.
class Tiff {
 public:
  explicit Tiff(std::string bytes) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::size_t width() const { return field(256); }
  [[nodiscard]] std::size_t height() const { return field(257); }
  [[nodiscard]] std::string_view pixels() const {
    return std::string_view(bytes_).substr(std::min(field(273), bytes_.size()), field(279));
  }

 private:
  [[nodiscard]] std::size_t number(std::size_t at, std::size_t size) const {
    std::size_t result = 0;
    for (std::size_t i = size; i-- > 0;) {
      result = result << 8U | (at + i < bytes_.size() ? static_cast<unsigned char>(bytes_[at + i]) : 0U);
    }
    return result;
  }
  [[nodiscard]] std::size_t field(std::size_t tag) const {
    const std::size_t folder = number(4, 4);
    for (std::size_t i = 0; i < number(folder, 2); ++i) {
      const std::size_t entry = folder + 2 + 12 * i;
      if (number(entry, 2) == tag) return number(entry + 8, 4);
    }
    return 0;
  }

  std::string bytes_;
};

// The data goes in pieces, and the terminal isn't to answer.
std::string forKitty(const std::string& format, std::string_view data) {
  constexpr std::size_t kPiece = 4096;
  const std::string text = base64(data);
  std::string drawing;
  for (std::size_t at = 0; at < text.size(); at += kPiece) {
    drawing += at == 0 ? "\x1B_Ga=T,q=2,r=" + std::string(kRows) + "," + format + "," : "\x1B_G";
    drawing += (at + kPiece < text.size() ? "m=1;" : "m=0;") + text.substr(at, kPiece) + "\x1B\\";
  }
  return drawing;
}

}  // namespace

std::string drawingOf(std::string_view bytes, const host::Value& image) {
  // Those that divide a terminal keep such sequences from it.
  if (!isTerminal(STDOUT_FILENO) || isSet("TMUX") || isSet("STY")) return {};
  if (isSet("KITTY_WINDOW_ID") || says("TERM", "kitty") || says("TERM", "ghostty")) {
    if (bytes.starts_with("\x89PNG")) return forKitty("f=100", bytes);
    const Tiff tiff(host::bytesOf(image.call("TIFFRepresentation")));
    if (tiff.pixels().size() > kMostBytes) return {};
    return forKitty("f=32,s=" + std::to_string(tiff.width()) + ",v=" + std::to_string(tiff.height()), tiff.pixels());
  }
  for (const char* program : {"iTerm", "WezTerm", "mintty"}) {
    if (!says("TERM_PROGRAM", program) && !says("LC_TERMINAL", program)) continue;
    return "\x1B]1337;File=inline=1;size=" + std::to_string(bytes.size()) + ";height=" + kRows + ":" + base64(bytes) +
           "\a";
  }
  return {};
}

}  // namespace contacts
