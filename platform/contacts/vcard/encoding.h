#pragma once

#include <string>
#include <string_view>

// The two transfer encodings of card values.
namespace vcard {

// Soft line breaks are already joined. A stray "=" stays as it is.
std::string decodeQuotedPrintable(std::string_view text);

// Skips what is not of the alphabet (blanks of folds); ends at the padding.
std::string decodeBase64(std::string_view text);
std::string encodeBase64(std::string_view bytes);

}  // namespace vcard
