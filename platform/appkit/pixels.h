#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// A decoded picture.
namespace appkit {

inline constexpr std::size_t kMostBytes = std::size_t{64} << 20;   // of a picture's data
inline constexpr std::size_t kMostPixels = std::size_t{64} << 20;  // of a picture

// Rows from the top, each pixel red, green, blue and opacity.
struct Pixels {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint8_t> rgba;
};

// Whether a picture may have that size: neither empty nor beyond the limit.
constexpr bool isPictureSize(std::uint64_t width, std::uint64_t height) {
  return width != 0 && height != 0 && width <= kMostPixels && height <= kMostPixels / width;
}

// PNG, JPEG, GIF (the first picture) and BMP.
std::optional<Pixels> decodeCommonFormats(std::span<const std::uint8_t> data);

// TIFF as encodeTiff writes it, and its near relations: uncompressed strips of grey, RGB or RGBA in bytes.
std::optional<Pixels> decodeTiff(std::span<const std::uint8_t> data);
std::vector<std::uint8_t> encodeTiff(const Pixels& pixels);

}  // namespace appkit
