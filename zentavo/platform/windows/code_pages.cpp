#include "zentavo/platform/code_pages.h"

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

// Code pages for which the system refuses flags and a default character. The Unicode forms among
// them replace by U+FFFD on their own.
bool TakesNoFlags(std::uint32_t code_page) {
  return code_page == CP_UTF7 || code_page == CP_UTF8 || code_page == 52936 || code_page == 54936 ||
         (code_page >= 50220 && code_page <= 50229) || (code_page >= 57002 && code_page <= 57011);
}

int Encode(std::u16string_view text, std::uint32_t code_page, CodePageFit fit, char* bytes,
           int size) {
  const bool plain = TakesNoFlags(code_page);
  const DWORD flags = plain || fit == CodePageFit::kBest ? 0 : WC_NO_BEST_FIT_CHARS;
  return WideCharToMultiByte(code_page, flags, AsWide(text.data()), static_cast<int>(text.size()),
                             bytes, size, plain ? nullptr : "?", nullptr);
}

int Decode(std::string_view bytes, std::uint32_t code_page, LooseBytes loose, char16_t* text,
           int size) {
  const bool plain = TakesNoFlags(code_page) || loose == LooseBytes::kKept;
  const DWORD flags = plain ? 0 : MB_ERR_INVALID_CHARS;
  return MultiByteToWideChar(code_page, flags, bytes.data(), static_cast<int>(bytes.size()),
                             AsWide(text), size);
}

// Decodes what stands at the start of `bytes`, one or two bytes; returns how many it took, 0 when
// they are invalid.
std::size_t DecodeOne(std::string_view bytes, std::uint32_t code_page, std::u16string& text) {
  const std::size_t size =
      bytes.size() > 1 && IsDBCSLeadByteEx(code_page, static_cast<BYTE>(bytes[0])) ? 2 : 1;
  char16_t units[2] = {};
  const int count = Decode(bytes.substr(0, size), code_page, LooseBytes::kReplaced, units, 2);
  text.append(units, static_cast<std::size_t>(count));
  return count > 0 ? size : 0;
}

// The system tells only that something is invalid, not where; so this goes step by step.
std::u16string DecodeWithFaults(std::string_view bytes, std::uint32_t code_page) {
  std::u16string text;
  while (!bytes.empty()) {
    std::size_t taken = DecodeOne(bytes, code_page, text);
    if (taken == 0) {
      text += u'\uFFFD';
      taken = 1;
    }
    bytes.remove_prefix(taken);
  }
  return text;
}

}  // namespace

std::uint32_t DefaultCodePage() {
  return GetACP();
}

bool CodePageKnown(std::uint32_t code_page) {
  return IsValidCodePage(code_page) != FALSE;
}

std::optional<std::string> EncodeCodePage(std::u16string_view text, std::uint32_t code_page,
                                          CodePageFit fit) {
  if (!CodePageKnown(code_page)) return std::nullopt;
  if (text.empty()) return std::string();
  const int size = Encode(text, code_page, fit, nullptr, 0);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  Encode(text, code_page, fit, bytes.data(), size);
  return bytes;
}

std::optional<std::u16string> DecodeCodePage(std::string_view bytes, std::uint32_t code_page,
                                             LooseBytes loose) {
  if (!CodePageKnown(code_page)) return std::nullopt;
  if (bytes.empty()) return std::u16string();
  const int size = Decode(bytes, code_page, loose, nullptr, 0);
  if (size <= 0) return DecodeWithFaults(bytes, code_page);
  std::u16string text(static_cast<std::size_t>(size), u'\0');
  Decode(bytes, code_page, loose, text.data(), size);
  return text;
}

std::optional<bool> FitsCodePage(std::u16string_view text, std::uint32_t code_page) {
  if (!CodePageKnown(code_page)) return std::nullopt;
  if (text.empty()) return true;
  // The system does not say whether one of these replaced something.
  if (TakesNoFlags(code_page)) {
    return DecodeCodePage(EncodeCodePage(text, code_page).value(), code_page) == text;
  }
  BOOL replaced = FALSE;
  WideCharToMultiByte(code_page, WC_NO_BEST_FIT_CHARS, AsWide(text.data()),
                      static_cast<int>(text.size()), nullptr, 0, nullptr, &replaced);
  return !replaced;
}

}  // namespace zentavo::platform
