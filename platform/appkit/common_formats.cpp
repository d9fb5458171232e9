#include "platform/appkit/jpeg_check.h"
#include "platform/appkit/pixels.h"

#include <cstdlib>
#include <memory>

namespace {

// The decoder's largest honest need is a picture with two bytes a sample; data that inflates to more is hostile.
constexpr std::size_t kLargestBlock = appkit::kMostPixels * 8 + (std::size_t{1} << 20);

// Zeroed, because the decoder looks into tables that broken data never defined.
void* limitedAlloc(std::size_t size) { return size <= kLargestBlock ? std::calloc(1, size) : nullptr; }

void* limitedRealloc(void* block, std::size_t size) {
  return size <= kLargestBlock ? std::realloc(block, size) : nullptr;
}

}  // namespace

#define STBI_MALLOC(size) limitedAlloc(size)
#define STBI_REALLOC(block, size) limitedRealloc(block, size)
#define STBI_FREE(block) std::free(block)
#define STBI_ASSERT(condition) static_cast<void>(0)
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_GIF
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>

std::optional<appkit::Pixels> appkit::decodeCommonFormats(std::span<const std::uint8_t> data) {
  if (!hasSoundCodeTables(data)) return std::nullopt;
  const int length = static_cast<int>(data.size());
  int width = 0;
  int height = 0;
  if (!stbi_info_from_memory(data.data(), length, &width, &height, nullptr)) return std::nullopt;
  if (width <= 0 || height <= 0) return std::nullopt;
  Pixels pixels{.width = static_cast<std::uint32_t>(width), .height = static_cast<std::uint32_t>(height), .rgba = {}};
  if (!isPictureSize(pixels.width, pixels.height)) return std::nullopt;
  const std::unique_ptr<stbi_uc, void (*)(void*)> decoded(
      stbi_load_from_memory(data.data(), length, &width, &height, nullptr, STBI_rgb_alpha), stbi_image_free);
  if (!decoded) return std::nullopt;
  pixels.rgba.assign(decoded.get(), decoded.get() + std::size_t{pixels.width} * pixels.height * 4);
  return pixels;
}
