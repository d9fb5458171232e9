#include "platform/appkit/jpeg_check.h"
#include "platform/appkit/pixels.h"

#include <algorithm>
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

namespace {

// The data as the decoder reads it piece by piece. Given all of it at once, the decoder adds lengths that it finds in
// the data to addresses, which wrap round on 32 bits.
struct Source {
  std::span<const std::uint8_t> left;

  static int read(void* source, char* buffer, int size) {
    auto& left = static_cast<Source*>(source)->left;
    const std::size_t count = std::min(left.size(), static_cast<std::size_t>(std::max(size, 0)));
    std::copy_n(left.begin(), count, buffer);
    left = left.subspan(count);
    return static_cast<int>(count);
  }

  static void skip(void* source, int size) {
    auto& left = static_cast<Source*>(source)->left;
    left = left.subspan(std::min(left.size(), static_cast<std::size_t>(std::max(size, 0))));
  }

  static int isAtEnd(void* source) { return static_cast<Source*>(source)->left.empty(); }
};

constexpr stbi_io_callbacks kSourceCalls{.read = Source::read, .skip = Source::skip, .eof = Source::isAtEnd};

}  // namespace

std::optional<appkit::Pixels> appkit::decodeCommonFormats(std::span<const std::uint8_t> data) {
  if (!hasSoundCodeTables(data)) return std::nullopt;
  Source source{data};
  int width = 0;
  int height = 0;
  if (!stbi_info_from_callbacks(&kSourceCalls, &source, &width, &height, nullptr)) return std::nullopt;
  if (width < 0 || height < 0 || !isPictureSize(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)))
    return std::nullopt;
  source.left = data;
  const std::unique_ptr<stbi_uc, void (*)(void*)> decoded(
      stbi_load_from_callbacks(&kSourceCalls, &source, &width, &height, nullptr, STBI_rgb_alpha), stbi_image_free);
  if (!decoded) return std::nullopt;
  Pixels pixels{.width = static_cast<std::uint32_t>(width), .height = static_cast<std::uint32_t>(height), .rgba = {}};
  pixels.rgba.assign(decoded.get(), decoded.get() + std::size_t{pixels.width} * pixels.height * 4);
  return pixels;
}
