#include "platform/appkit/pixels.h"

#include <algorithm>
#include <map>
#include <utility>

namespace appkit {

namespace {

enum Tag : std::uint16_t {
  kImageWidth = 256,
  kImageLength = 257,
  kBitsPerSample = 258,
  kCompression = 259,
  kPhotometricInterpretation = 262,
  kStripOffsets = 273,
  kSamplesPerPixel = 277,
  kRowsPerStrip = 278,
  kStripByteCounts = 279,
  kXResolution = 282,
  kYResolution = 283,
  kPlanarConfiguration = 284,
  kResolutionUnit = 296,
  kExtraSamples = 338,
};

enum Type : std::uint16_t { kByte = 1, kShort = 3, kLong = 4, kRational = 5 };

constexpr std::uint32_t kUncompressed = 1;
constexpr std::uint32_t kBlackIsZero = 1;
constexpr std::uint32_t kRgb = 2;
constexpr std::uint32_t kChunky = 1;
constexpr std::uint32_t kUnassociatedAlpha = 2;

// Reads numbers out of the data; what lies outside reads as 0, which no field that matters allows.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> data) : data_(data), bigEndian_(!data.empty() && data[0] == 'M') {}

  // The first folder of fields, when this is a TIFF.
  bool readFields() {
    const std::uint32_t order = number(0, 2);
    if ((order != 0x4949 && order != 0x4D4D) || number(2, 2) != 42) return false;
    const std::uint64_t folder = number(4, 4);
    const std::uint32_t count = number(folder, 2);
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint64_t entry = folder + 2 + std::uint64_t{i} * 12;
      fields_.try_emplace(number(entry, 2), Field{number(entry + 2, 2), number(entry + 4, 4), entry + 8});
    }
    return true;
  }

  [[nodiscard]] std::uint32_t count(Tag tag) const {
    const auto found = fields_.find(tag);
    return found == fields_.end() ? 0 : found->second.count;
  }

  [[nodiscard]] std::uint32_t value(Tag tag, std::uint32_t index, std::uint32_t missing) const {
    if (index >= count(tag)) return missing;
    const Field& field = fields_.at(tag);
    const std::uint32_t size = field.type == kByte ? 1 : field.type == kShort ? 2 : field.type == kLong ? 4 : 0;
    // Values stand in the field itself if they fit.
    const std::uint64_t first = std::uint64_t{field.count} * size <= 4 ? field.at : number(field.at, 4);
    return number(first + std::uint64_t{index} * size, size);
  }

  [[nodiscard]] std::span<const std::uint8_t> bytes(std::uint64_t at, std::uint64_t size) const {
    if (at > data_.size() || size > data_.size() - at) return {};
    return data_.subspan(static_cast<std::size_t>(at), static_cast<std::size_t>(size));
  }

 private:
  struct Field {
    std::uint32_t type;
    std::uint32_t count;
    std::uint64_t at;
  };

  [[nodiscard]] std::uint32_t number(std::uint64_t at, std::uint32_t size) const {
    const auto found = bytes(at, size);
    std::uint32_t result = 0;
    for (std::size_t i = 0; i < found.size(); ++i) {
      result = result << 8 | (bigEndian_ ? found[i] : found[found.size() - 1 - i]);
    }
    return result;
  }

  std::span<const std::uint8_t> data_;
  bool bigEndian_;
  std::map<std::uint32_t, Field> fields_;
};

bool isPlainPicture(const Reader& reader, std::uint32_t samples) {
  if (samples != 1 && samples != 3 && samples != 4) return false;
  for (std::uint32_t i = 0; i < samples; ++i) {
    if (reader.value(kBitsPerSample, i, 0) != 8) return false;
  }
  const std::uint32_t photometric = samples == 1 ? kBlackIsZero : kRgb;
  return reader.value(kCompression, 0, kUncompressed) == kUncompressed &&
         reader.value(kPhotometricInterpretation, 0, kRgb + 1) == photometric &&
         reader.value(kPlanarConfiguration, 0, kChunky) == kChunky &&
         (samples != 4 || reader.value(kExtraSamples, 0, 0) == kUnassociatedAlpha);
}

void appendPixels(std::span<const std::uint8_t> source, std::uint32_t samples, std::vector<std::uint8_t>& rgba) {
  for (std::size_t at = 0; at < source.size(); at += samples) {
    for (std::size_t i = 0; i < 3; ++i) rgba.push_back(source[at + (samples == 1 ? 0 : i)]);
    rgba.push_back(samples == 4 ? source[at + 3] : 0xFF);
  }
}

// Fields in ascending order of their tags, as the format asks; what doesn't fit into one stands behind the fields.
class Writer {
 public:
  void number(std::uint32_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }

  void field(Tag tag, Type type, std::uint32_t count, std::uint32_t value) {
    number(tag, 2);
    number(type, 2);
    number(count, 4);
    number(value, 4);
  }

  [[nodiscard]] std::vector<std::uint8_t>& bytes() { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace

std::optional<Pixels> decodeTiff(std::span<const std::uint8_t> data) {
  Reader reader(data);
  if (!reader.readFields()) return std::nullopt;
  const std::uint32_t samples = reader.value(kSamplesPerPixel, 0, 1);
  Pixels pixels{.width = reader.value(kImageWidth, 0, 0), .height = reader.value(kImageLength, 0, 0), .rgba = {}};
  if (!isPlainPicture(reader, samples) || !isPictureSize(pixels.width, pixels.height)) return std::nullopt;
  const std::uint32_t rowsPerStrip = std::min(reader.value(kRowsPerStrip, 0, pixels.height), pixels.height);
  const std::uint64_t rowSize = std::uint64_t{pixels.width} * samples;
  // Uncompressed pixels are all in the data: nothing is set aside for those that aren't.
  if (rowsPerStrip == 0 || rowSize * pixels.height > data.size()) return std::nullopt;
  pixels.rgba.reserve(std::size_t{pixels.width} * pixels.height * 4);
  for (std::uint32_t row = 0; row < pixels.height; row += rowsPerStrip) {
    const std::uint64_t size = rowSize * std::min(rowsPerStrip, pixels.height - row);
    const std::uint32_t strip = row / rowsPerStrip;
    const auto source = reader.bytes(reader.value(kStripOffsets, strip, 0), size);
    if (source.empty() || reader.value(kStripByteCounts, strip, 0) < size) return std::nullopt;
    appendPixels(source, samples, pixels.rgba);
  }
  return pixels;
}

std::vector<std::uint8_t> encodeTiff(const Pixels& pixels) {
  constexpr std::uint32_t kFields = 14;
  constexpr std::uint32_t kBitsAt = 8 + 2 + kFields * 12 + 4;
  constexpr std::uint32_t kResolutionAt = kBitsAt + 4 * 2;
  constexpr std::uint32_t kPixelsAt = kResolutionAt + 8;
  constexpr std::uint32_t kDotsPerInch = 72;  // so that a point, the unit of an image's size, is a pixel
  constexpr std::uint32_t kInch = 2;
  const auto size = static_cast<std::uint32_t>(pixels.rgba.size());

  Writer writer;
  writer.bytes().reserve(kPixelsAt + size);
  writer.number(0x4949, 2);
  writer.number(42, 2);
  writer.number(8, 4);
  writer.number(kFields, 2);
  writer.field(kImageWidth, kLong, 1, pixels.width);
  writer.field(kImageLength, kLong, 1, pixels.height);
  writer.field(kBitsPerSample, kShort, 4, kBitsAt);
  writer.field(kCompression, kShort, 1, kUncompressed);
  writer.field(kPhotometricInterpretation, kShort, 1, kRgb);
  writer.field(kStripOffsets, kLong, 1, kPixelsAt);
  writer.field(kSamplesPerPixel, kShort, 1, 4);
  writer.field(kRowsPerStrip, kLong, 1, pixels.height);
  writer.field(kStripByteCounts, kLong, 1, size);
  writer.field(kXResolution, kRational, 1, kResolutionAt);
  writer.field(kYResolution, kRational, 1, kResolutionAt);
  writer.field(kPlanarConfiguration, kShort, 1, kChunky);
  writer.field(kResolutionUnit, kShort, 1, kInch);
  writer.field(kExtraSamples, kShort, 1, kUnassociatedAlpha);
  writer.number(0, 4);  // no further picture
  for (int i = 0; i < 4; ++i) writer.number(8, 2);
  writer.number(kDotsPerInch, 4);
  writer.number(1, 4);
  writer.bytes().insert(writer.bytes().end(), pixels.rgba.begin(), pixels.rgba.end());
  return std::move(writer.bytes());
}

}  // namespace appkit
