#include "platform/foundation/value_encoding.h"

#include <algorithm>
#include <string_view>

namespace {

struct Extent {
  std::size_t size;
  std::size_t alignment;
};

// The alignment of a structure's member, which on i386 is less than alignof says for 64-bit types.
template <class T>
struct Member {
  char before;
  T value;
};

template <class T>
constexpr Extent kExtent{sizeof(T), offsetof(Member<T>, value)};

constexpr std::size_t roundedUp(std::size_t size, std::size_t alignment) {
  return (size + alignment - 1) / alignment * alignment;
}

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  [[nodiscard]] bool atEnd() const { return text_.empty(); }

  std::optional<Extent> type() {
    if (text_.empty()) return std::nullopt;
    const char letter = text_.front();
    text_.remove_prefix(1);
    switch (letter) {
      case 'c':
      case 'C':
      case 'B':
        return kExtent<char>;
      case 's':
      case 'S':
        return kExtent<short>;
      case 'i':
      case 'I':
        return kExtent<int>;
      case 'l':
      case 'L':
        return kExtent<long>;
      case 'q':
      case 'Q':
        return kExtent<long long>;
      case 'f':
        return kExtent<float>;
      case 'd':
        return kExtent<double>;
      case '*':
      case '@':
      case '#':
      case ':':
        return kExtent<void*>;
      case '^':
        return pointer();
      case '{':
        return structure();
      default:
        return std::nullopt;
    }
  }

 private:
  bool skip(char wanted) {
    if (text_.empty() || text_.front() != wanted) return false;
    text_.remove_prefix(1);
    return true;
  }

  // What a pointer points to has no size of its own here, and may be void.
  std::optional<Extent> pointer() {
    if (!skip('v') && !type()) return std::nullopt;
    return kExtent<void*>;
  }

  std::optional<Extent> structure() {
    const std::size_t name = text_.find('=');
    if (name == std::string_view::npos) return std::nullopt;
    text_.remove_prefix(name + 1);
    Extent whole{0, 1};
    while (!skip('}')) {
      const auto member = type();
      if (!member) return std::nullopt;
      whole.size = roundedUp(whole.size, member->alignment) + member->size;
      whole.alignment = std::max(whole.alignment, member->alignment);
    }
    whole.size = roundedUp(whole.size, whole.alignment);
    return whole;
  }

  std::string_view text_;
};

}  // namespace

std::optional<std::size_t> foundation::sizeOfEncoding(const char* encoding) {
  Reader reader(encoding);
  const auto whole = reader.type();
  if (!whole || !reader.atEnd()) return std::nullopt;
  return whole->size;
}
