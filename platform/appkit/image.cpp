#include "platform/appkit/image.h"

#include "platform/appkit/load.h"
#include "platform/appkit/pixels.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <new>
#include <optional>
#include <span>
#include <utility>

namespace appkit {

namespace {

// Nothing for what is no picture, or too large a one for the memory there is.
std::optional<Pixels> decode(NSData data) try {
  if (data.length() == 0 || data.length() > kMostBytes) return std::nullopt;
  const std::span bytes(static_cast<const std::uint8_t*>(data.bytes()), data.length());
  std::optional<Pixels> pixels = decodeTiff(bytes);
  return pixels ? std::move(pixels) : decodeCommonFormats(bytes);
} catch (const std::bad_alloc&) {
  return std::nullopt;
}

struct ImageObject : objc::Object {
  // The receiver is the caller's no more: it is answered, or given up.
  NSImage initWithData(NSData data) {
    auto owned = Retained<NSImage>::adopt(NSImage(this));
    std::optional<Pixels> decoded = decode(data);
    if (!decoded) return nullptr;
    pixels = std::move(*decoded);
    return owned.leak();
  }

  NSSize size() const { return {static_cast<CGFloat>(pixels.width), static_cast<CGFloat>(pixels.height)}; }

  NSData tiffRepresentation() const try {
    return pixels.rgba.empty() ? NSData() : NSData::dataWithBuffer(encodeTiff(pixels));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }

  Pixels pixels;
};

}  // namespace

void registerImage() {
  objc::ClassBuilder::define<ImageObject>("NSImage", "NSObject")
      .method<&ImageObject::initWithData>("initWithData:")
      .method<&ImageObject::size>("size")
      .method<&ImageObject::tiffRepresentation>("TIFFRepresentation");
}

}  // namespace appkit
