#include "zentavo/platform/code_pages.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace zentavo::platform {

namespace {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

struct CodePageName {
  std::uint32_t code_page;
  const char* name;
};

// Where the number alone does not make the name. Numbers from here on are those of Windows.
constexpr std::array kNames = {
    CodePageName{437, "ibm-437"},
    CodePageName{737, "ibm-737"},
    CodePageName{850, "ibm-850"},
    CodePageName{852, "ibm-852"},
    CodePageName{855, "ibm-855"},
    CodePageName{857, "ibm-857"},
    CodePageName{866, "ibm-866"},
    CodePageName{869, "ibm-869"},
    CodePageName{874, "windows-874-2000"},
    CodePageName{932, "ibm-943_P15A-2003"},
    CodePageName{936, "windows-936-2000"},
    CodePageName{949, "windows-949-2000"},
    CodePageName{950, "windows-950-2000"},
    CodePageName{10000, "macintosh"},
    CodePageName{10006, "x-mac-greek"},
    CodePageName{10007, "x-mac-cyrillic"},
    CodePageName{10029, "x-mac-centraleurroman"},
    CodePageName{10081, "x-mac-turkish"},
    CodePageName{20127, "US-ASCII"},
    CodePageName{20866, "KOI8-R"},
    CodePageName{20932, "EUC-JP"},
    CodePageName{21866, "KOI8-U"},
    CodePageName{28591, "ISO-8859-1"},
    CodePageName{28592, "ISO-8859-2"},
    CodePageName{28593, "ISO-8859-3"},
    CodePageName{28594, "ISO-8859-4"},
    CodePageName{28595, "ISO-8859-5"},
    CodePageName{28596, "ISO-8859-6"},
    CodePageName{28597, "ISO-8859-7"},
    CodePageName{28598, "ISO-8859-8"},
    CodePageName{28599, "ISO-8859-9"},
    CodePageName{28603, "ISO-8859-13"},
    CodePageName{28605, "ISO-8859-15"},
    CodePageName{50220, "ISO-2022-JP"},
    CodePageName{51949, "EUC-KR"},
    CodePageName{54936, "gb18030"},
    CodePageName{65000, "UTF-7"},
    CodePageName{65001, "UTF-8"},
};

// Writes one '?' for each unit, as Windows does. The stock substitution would drop soft hyphens,
// joiners and the like without a trace.
void WriteQuestionMarks(const void*, UConverterFromUnicodeArgs* args, const UChar*,
                        std::int32_t length, UChar32, UConverterCallbackReason reason,
                        UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  constexpr std::array<UChar, 2> kMarks = {u'?', u'?'};
  const UChar* source = kMarks.data();
  ucnv_cbFromUWriteUChars(args, &source, source + std::min(length, 2), 0, status);
}

// Writes U+FFFD for every invalid sequence; the stock replacement is a control character for some.
void WriteReplacement(const void*, UConverterToUnicodeArgs* args, const char*, std::int32_t,
                      UConverterCallbackReason reason, UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  constexpr UChar kReplacement = u'\uFFFD';
  ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, status);
}

Converter OpenByName(const char* name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(name, &status));
  if (U_FAILURE(status) || ucnv_getMinCharSize(converter.get()) != 1) return nullptr;
  return converter;
}

Converter OpenByNumber(std::uint32_t code_page) {
  const auto* found = std::find_if(kNames.begin(), kNames.end(), [&](const CodePageName& entry) {
    return entry.code_page == code_page;
  });
  if (found != kNames.end()) return OpenByName(found->name);
  const std::string number = std::to_string(code_page);
  Converter converter = OpenByName(("windows-" + number).c_str());
  return converter ? std::move(converter) : OpenByName(("ibm-" + number).c_str());
}

bool IsUnicode(std::uint32_t code_page) {
  return code_page == 65000 || code_page == kCodePageUtf8;
}

Converter Open(std::uint32_t code_page) {
  Converter converter = OpenByNumber(code_page);
  if (!converter) return nullptr;
  ucnv_setFallback(converter.get(), false);
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setToUCallBack(converter.get(), WriteReplacement, nullptr, nullptr, nullptr, &status);
  // Every Unicode form has U+FFFD itself.
  if (IsUnicode(code_page)) return converter;
  ucnv_setFromUCallBack(converter.get(), WriteQuestionMarks, nullptr, nullptr, nullptr, &status);
  return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

// The calling thread's converter for `code_page`, null when there is none. A thread uses few code
// pages, and opening a converter costs far more than using it.
UConverter* ThreadConverter(std::uint32_t code_page) {
  struct Entry {
    std::uint32_t code_page;
    Converter converter;
  };
  thread_local std::vector<Entry> entries;
  for (const Entry& entry : entries) {
    if (entry.code_page == code_page) return entry.converter.get();
  }
  Converter opened = Open(code_page);
  if (!opened) return nullptr;
  entries.push_back({code_page, std::move(opened)});
  return entries.back().converter.get();
}

// Runs `convert(target, target_end, status)` until it has written all, growing `out` as needed.
template <typename Text, typename Convert>
void ConvertAll(Text& out, std::size_t estimate, Convert convert) {
  std::size_t done = 0;
  out.resize(estimate);
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    auto* target = out.data() + done;
    convert(&target, out.data() + out.size(), &status);
    done = static_cast<std::size_t>(target - out.data());
    if (status != U_BUFFER_OVERFLOW_ERROR) break;
    out.resize(out.size() * 2 + 16);
  }
  out.resize(done);
}

}  // namespace

std::uint32_t DefaultCodePage() {
  return kCodePageUtf8;
}

bool CodePageKnown(std::uint32_t code_page) {
  return ThreadConverter(code_page) != nullptr;
}

std::optional<std::string> EncodeCodePage(std::u16string_view text, std::uint32_t code_page) {
  UConverter* converter = ThreadConverter(code_page);
  if (converter == nullptr) return std::nullopt;
  ucnv_resetFromUnicode(converter);
  std::string bytes;
  const char16_t* source = text.data();
  const char16_t* end = source + text.size();
  ConvertAll(bytes, text.size() * 2, [&](char** target, char* limit, UErrorCode* status) {
    ucnv_fromUnicode(converter, target, limit, &source, end, nullptr, true, status);
  });
  return bytes;
}

std::optional<std::u16string> DecodeCodePage(std::string_view bytes, std::uint32_t code_page) {
  UConverter* converter = ThreadConverter(code_page);
  if (converter == nullptr) return std::nullopt;
  ucnv_resetToUnicode(converter);
  std::u16string text;
  const char* source = bytes.data();
  const char* end = source + bytes.size();
  ConvertAll(text, bytes.size(), [&](char16_t** target, char16_t* limit, UErrorCode* status) {
    ucnv_toUnicode(converter, target, limit, &source, end, nullptr, true, status);
  });
  return text;
}

}  // namespace zentavo::platform
