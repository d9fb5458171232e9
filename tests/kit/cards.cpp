#include "tests/kit/cards.h"

namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\n') {
      result += "\\n";
      continue;
    }
    if (c == ',' || c == ';' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string uidOr(std::string_view uid, const char* kind) {
  static int made = 0;
  return uid.empty() ? kind + std::to_string(++made) : std::string(uid);
}

}  // namespace

Card person(std::string_view first, std::string_view last, std::string_view uid,
            const std::vector<std::string>& lines) {
  Card card{uidOr(uid, "person"), {}};
  const std::string space = first.empty() || last.empty() ? "" : " ";
  card.lines = "UID:" + card.uid + "\nN:" + escaped(last) + ";" + escaped(first) + ";;;\nFN:" + escaped(first) + space +
               escaped(last) + "\n";
  for (const std::string& line : lines) card.lines += line + "\n";
  return card;
}

Card group(std::string_view name, std::string_view uid, const std::vector<std::string>& members) {
  Card card{uidOr(uid, "group"), {}};
  card.lines =
      "UID:" + card.uid + "\nX-ADDRESSBOOKSERVER-KIND:group\nN:" + escaped(name) + ";;;;\nFN:" + escaped(name) + "\n";
  for (const std::string& member : members) card.lines += "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + member + "\n";
  return card;
}
