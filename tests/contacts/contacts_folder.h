#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

// A folder of cards that lives as long as this object, and is what ADDRESSBOOK_FOLDER names.
class ContactsFolder {
 public:
  ContactsFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "contacts-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = pattern;
    setenv("ADDRESSBOOK_FOLDER", path_.c_str(), 1);
  }
  ContactsFolder(const ContactsFolder&) = delete;
  ContactsFolder& operator=(const ContactsFolder&) = delete;
  ~ContactsFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  void write(const std::string& name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
  }
  // A card of version 3.0 with these lines, each ended by a line feed.
  void writeCard(const std::string& name, const std::string& lines) const {
    write(name, "BEGIN:VCARD\nVERSION:3.0\n" + lines + "END:VCARD\n");
  }

 private:
  std::filesystem::path path_;
};

inline std::string bytesOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}
