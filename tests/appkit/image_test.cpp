#include "platform/appkit/image.h"

#include "platform/objc/retained.h"
#include "tests/objc/live_objects.h"

#include <cstdint>
#include <string>
#include <vector>

#define STBIW_ASSERT(condition) static_cast<void>(0)
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr int kWidth = 3;
constexpr int kHeight = 2;
// Red, green, blue; grey, half and fully see-through.
const Bytes kPixels = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 128, 128, 128, 255, 10, 20, 30, 128, 1, 2, 3, 0};

// What TIFFRepresentation puts before the pixels.
constexpr std::size_t kTiffHead = 198;

class Image : public LiveObjectsTest {
 protected:
  static Retained<NSImage> imageOf(const Bytes& bytes) {
    return Retained<NSImage>::adopt(NSImage::alloc().initWithData(NSData::dataWithBytes(bytes.data(), bytes.size())));
  }

  static Bytes tiffOf(NSImage image) {
    const NSData data = image.TIFFRepresentation();
    const auto* first = static_cast<const std::uint8_t*>(data.bytes());
    return {first, first + data.length()};
  }

  // Red, green, blue and opacity of each pixel; empty when the bytes are no image.
  static Bytes pixelsOf(const Bytes& bytes) {
    const auto image = imageOf(bytes);
    if (!image) return {};
    const Bytes tiff = tiffOf(image.get());
    const NSSize size = image->size();
    EXPECT_EQ(tiff.size(), kTiffHead + static_cast<std::size_t>(size.width * size.height) * 4);
    return {tiff.begin() + kTiffHead, tiff.end()};
  }

  static void append(void* bytes, void* data, int size) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), first, first + size);
  }

  // The pixels as one of the writers encodes them.
  template <class Writer, class... Quality>
  static Bytes encoded(Writer writer, Quality... quality) {
    Bytes bytes;
    writer(append, &bytes, kWidth, kHeight, 4, kPixels.data(), quality...);
    return bytes;
  }

  static Bytes png() { return encoded(stbi_write_png_to_func, 0); }
  static Bytes bmp() { return encoded(stbi_write_bmp_to_func); }
  static Bytes jpeg() { return encoded(stbi_write_jpg_to_func, 100); }
  static Bytes tiff() { return tiffOf(imageOf(png()).get()); }

  // The bytes with another value at some places.
  static Bytes with(Bytes bytes, std::initializer_list<std::size_t> places, std::uint8_t value) {
    for (const std::size_t place : places) bytes[place] = value;
    return bytes;
  }

  // Two pixels, red and blue.
  static Bytes gif() {
    return {'G', 'I',  'F', '8', '9', 'a', 2, 0, 1, 0, 0x80, 0, 0, 255,  0,    0, 0,   0,
            255, 0x2C, 0,   0,   0,   0,   2, 0, 1, 0, 0,    2, 2, 0x44, 0x0A, 0, 0x3B};
  }
};

TEST_F(Image, ReadsTheCommonFormatsAndItsOwnTiff) {
  EXPECT_EQ(pixelsOf(png()), kPixels);
  EXPECT_EQ(pixelsOf(bmp()), kPixels);
  EXPECT_EQ(pixelsOf(gif()), (Bytes{255, 0, 0, 255, 0, 0, 255, 255}));
  EXPECT_EQ(pixelsOf(jpeg()).size(), kPixels.size());
  EXPECT_EQ(imageOf(jpeg())->size(), (NSSize{kWidth, kHeight}));
  EXPECT_EQ(pixelsOf(tiff()), kPixels);
  EXPECT_EQ(tiffOf(imageOf(tiff()).get()), tiff());
}

TEST_F(Image, ReadsOtherPlainTiffs) {
  // Big-endian grey in two strips, the fields behind the pixels, an unknown field among them.
  const Bytes grey = {'M', 'M', 0, 42, 0, 0, 0, 12, 7,   100, 200, 250, 0, 9,  // pixels 7 100 200
                      1,   0,   0, 3,  0, 0, 0, 1,  0,   2,   0,   0,          // width 2
                      1,   1,   0, 3,  0, 0, 0, 1,  0,   2,   0,   0,          // height 2
                      1,   2,   0, 3,  0, 0, 0, 1,  0,   8,   0,   0,          // 8 bits
                      1,   6,   0, 3,  0, 0, 0, 1,  0,   1,   0,   0,          // black is 0
                      1,   17,  0, 3,  0, 0, 0, 2,  0,   8,   0,   10,         // strips at 8, 10
                      1,   22,  0, 3,  0, 0, 0, 1,  0,   1,   0,   0,          // a row each
                      1,   23,  0, 1,  0, 0, 0, 2,  2,   2,   0,   0,          // 2 bytes each
                      1,   49,  0, 2,  0, 0, 0, 1,  'x', 0,   0,   0,          // a program's name
                      1,   40,  0, 3,  0, 0, 0, 1,  0,   2,   0,   0,   0, 0, 0, 0};
  EXPECT_EQ(pixelsOf(grey), (Bytes{7, 7, 7, 255, 100, 100, 100, 255, 200, 200, 200, 255, 250, 250, 250, 255}));

  EXPECT_FALSE(imageOf(with(grey, {14 + 6 * 12 + 9}, 1)));      // too few bytes
  EXPECT_FALSE(imageOf(with(grey, {14 + 4 * 12 + 10}, 0xFF)));  // outside the data
  EXPECT_FALSE(imageOf(with(tiff(), {10 + 3 * 12 + 8}, 5)));    // compressed
}

TEST_F(Image, IsNilForWhatIsNone) {
  EXPECT_FALSE(NSImage::alloc().initWithData(nullptr));
  for (const std::string& text :
       {""s, "GIF89a"s, "BEGIN:VCARD"s, "II*\0"s, "\x89PNG\r\n\x1A\n"s, "\xFF\xD8\xFF"s, std::string(1000, 'B')}) {
    EXPECT_FALSE(imageOf(Bytes(text.begin(), text.end()))) << text;
  }
  EXPECT_FALSE(imageOf(Bytes((std::size_t{64} << 20) + 1)));
  // Sizes beyond the limit, in headers that are good otherwise.
  EXPECT_FALSE(imageOf(with(gif(), {7, 9}, 0xFF)));
  EXPECT_FALSE(imageOf(with(tiff(), {10 + 8 + 2, 10 + 12 + 8 + 2}, 0xFF)));
  EXPECT_FALSE(imageOf(with(tiff(), {10 + 8}, 0)));
}

// Every beginning, and every bit turned over: nil or an image of a sane size, and nothing read or written outside.
TEST_F(Image, SurvivesBrokenData) {
  for (const Bytes& whole : {png(), bmp(), gif(), jpeg(), tiff()}) {
    for (std::size_t size = 0; size < whole.size(); ++size) imageOf(Bytes(whole.data(), whole.data() + size));
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
      Bytes broken = whole;
      broken[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
      if (const auto image = imageOf(broken)) {
        EXPECT_GT(image->size().width * image->size().height, 0) << bit;
      }
    }
  }
}

}  // namespace
