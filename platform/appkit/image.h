#pragma once

#include "platform/foundation/data.h"
#include "platform/foundation/geometry.h"
#include "platform/foundation/object.h"

// A picture.
class NSImage : public NSObject {
 public:
  using NSObject::NSObject;

  static NSImage alloc() { return ::alloc<NSImage>("NSImage"_class); }
  // The picture in PNG, JPEG, GIF, BMP or uncompressed TIFF data. Nil for data that holds none, and beyond 64 MiB of
  // data or 64 Mi pixels; what was allocated is gone then.
  [[nodiscard]] NSImage initWithData(NSData data) const { return send<NSImage>(*this, "initWithData:"_sel, data); }

  // In pixels.
  [[nodiscard]] NSSize size() const { return send<NSSize>(*this, "size"_sel); }
  // The picture as an uncompressed TIFF; nil for an empty picture, and without the memory for it.
  [[nodiscard]] NSData TIFFRepresentation() const { return send<NSData>(*this, "TIFFRepresentation"_sel); }
};
