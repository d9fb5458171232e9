#include "apps/contacts/commands.h"
#include "apps/contacts/drawing.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/people.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"
#include "host/memory_blocks.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string_view>

namespace contacts {
namespace {

constexpr std::string_view kJpeg = "\xFF\xD8\xFF";
constexpr std::string_view kUnknown = "of unknown format";
constexpr std::string_view kPng = "\x89PNG\r\n";

std::string_view formatOf(std::string_view bytes) {
  if (bytes.starts_with(kJpeg)) return "JPEG";
  if (bytes.starts_with(kPng)) return "PNG";
  if (bytes.starts_with("GIF8")) return "GIF";
  if (bytes.starts_with("BM")) return "BMP";
  if (bytes.starts_with(std::string_view("II*\0", 4)) || bytes.starts_with(std::string_view("MM\0*", 4))) return "TIFF";
  return kUnknown;
}

std::string photoOf(const host::Value& person) {
  const host::Value data = person.call("imageData");
  std::string bytes = data.isNil() ? std::string() : host::bytesOf(data);
  if (bytes.empty()) throw Failure(printable(nameOf(person)) + " has no picture");
  return bytes;
}

void change(const host::Value& person, const host::Value& data) {
  if (static_cast<bool>(person.call("setImageData", data))) return;
  throw Failure("the picture of " + printable(nameOf(person)) + " can't be changed");
}

}  // namespace

void describePhoto(const std::string& name, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value person = findPerson(book, name);
  const std::string bytes = photoOf(person);
  const host::Value image = person.call("image");
  if (manner.isJson) {
    std::cout << R"({"format": ")" << formatOf(bytes) << R"(", "bytes": )" << bytes.size() << "}\n";
    return;
  }
  std::cout << printable(nameOf(person)) << ": " << formatOf(bytes) << ", " << bytes.size() << " bytes"
            << (image.isNil() ? ", can't be shown" : "") << '\n';
  const std::string drawing = image.isNil() ? std::string() : drawingOf(bytes, image);
  if (!drawing.empty()) std::cout << drawing << '\n';
}

void writePhoto(const std::string& name, const std::string& file, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const std::string bytes = photoOf(findPerson(book, name));
  if (file == kStandardStream) {
    std::cout << bytes;
    return;
  }
  std::ofstream stream(file, std::ios::binary);
  stream << bytes;
  stream.close();
  if (!stream) throw Failure(printable(file) + ": cannot be written: " + std::strerror(errno));
}

void setPhoto(const std::string& name, const std::string& file, const Manner& manner) {
  const std::string bytes = readWhole(file);
  const std::string_view format = formatOf(bytes);
  if (format == kUnknown) throw Failure(fileText(file) + ": no picture; expected JPEG, PNG, GIF, BMP or TIFF");
  const host::Value book = openAddressBook(manner);
  const host::Value person = findPerson(book, name);
  change(person, host::memoryBlock(bytes));
  // There are more kinds of TIFF than are shown here.
  if (format != "TIFF" && person.call("image").isNil()) {
    throw Failure(fileText(file) + ": a broken picture; expected a whole " + std::string(format));
  }
  save(book, manner);
  say(manner, "Changed the picture of", person);
}

void removePhoto(const std::string& name, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value person = findPerson(book, name);
  photoOf(person);
  change(person, nullptr);
  save(book, manner);
  say(manner, "Removed the picture of", person);
}

}  // namespace contacts
