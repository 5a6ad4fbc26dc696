// How a text stands in a file: UTF-8, UTF-16 in either byte order, or a code page.
//
//   const TEncoding encoding = TEncoding::FromMark(bytes).value_or(TEncoding::Utf8());
//   String text;
//   const bool whole = encoding.Decode(bytes, text);
//
// All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "zentavo/framework/text.h"

namespace zentavo {

// A value; two are equal when they name the same encoding.
class ZENTAVO_API TEncoding {
 public:
  // A code page by its Windows number; 1200 and 1201 are UTF-16, low and high byte first. Raises
  // EConvertError "Unknown code page %d".
  explicit TEncoding(std::uint32_t code_page);
  static TEncoding Utf8();
  static TEncoding Utf16LE();
  static TEncoding Utf16BE();
  // The system code page, whichever it is at the moment of each conversion.
  static TEncoding System();

  // The encoding whose byte-order mark `bytes` begin with, nothing when they begin with none.
  static std::optional<TEncoding> FromMark(std::string_view bytes);
  // The byte-order mark; empty for code pages other than UTF-8.
  std::string_view Mark() const;

  // Appends the text of `bytes`, where a mark is a character as any other. Returns whether they are
  // valid throughout; what is not becomes U+FFFD. Lone surrogates are valid in UTF-16.
  bool Decode(std::string_view bytes, String& text) const;
  // Returns `text` in bytes, without a mark. What has no counterpart becomes '?', in UTF-8 a lone
  // surrogate U+FFFD.
  AnsiString Encode(StringView text) const;

  // The number; that of the system code page as it is now.
  std::uint32_t CodePage() const;
  bool operator==(const TEncoding& other) const = default;

 private:
  enum class Known : std::uint32_t {};
  constexpr explicit TEncoding(Known code_page)
      : code_page_(static_cast<std::uint32_t>(code_page)) {}

  std::uint32_t code_page_;  // 0: the system's
};

}  // namespace zentavo
