#include "zentavo/platform/code_pages.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "zentavo/platform/linux/documented_pages.h"
#include "zentavo/platform/linux/single_byte_page.h"

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

// Single-byte pages ----------------------------------------------------------------------------

// What a byte stands for to `converter`: one unit, or U+FFFD for none; nothing for more than one.
std::optional<char16_t> UnitOf(UConverter* converter, std::size_t byte) {
  const char bytes[] = {static_cast<char>(byte)};
  char16_t units[4] = {};
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t count = ucnv_toUChars(converter, units, 4, bytes, 1, &status);
  if (U_FAILURE(status) || count > 1) return std::nullopt;
  return count == 1 ? units[0] : u'\uFFFD';
}

// The tables of a page that has one byte and one unit for every character, else null.
std::unique_ptr<SingleBytePage> MakeTables(std::uint32_t code_page, UConverter* converter) {
  if (ucnv_getMaxCharSize(converter) != 1) return nullptr;
  SingleBytePage::Units units;
  for (std::size_t byte = 0; byte < units.size(); ++byte) {
    const std::optional<char16_t> unit = UnitOf(converter, byte);
    if (!unit) return nullptr;
    units[byte] = *unit;
  }
  // Here too converters exchange control characters.
  if (units['A'] == u'A') {
    for (std::size_t byte = 0; byte < 0x80; ++byte) units[byte] = static_cast<char16_t>(byte);
  }
  ApplyDocumentedUnits(code_page, units);
  return std::make_unique<SingleBytePage>(units, DocumentedBestFits(code_page));
}

// Some converters exchange three control characters, as mainframes once did. None of them is a
// later byte of a character, so that they can be put back in the result.
bool ExchangesControls(UConverter* converter) {
  return UnitOf(converter, 0x1A) == u'\x1C' && UnitOf(converter, 0x1C) == u'\x7F';
}

struct KnownPage {
  std::uint32_t code_page;
  std::unique_ptr<const SingleBytePage> tables;  // null for a page of more bytes a character
  bool exchanges_controls;
  const KnownPage* next;
};

// Every page that was asked for and that there is, the latest first. Pages are added in front and
// never freed: threads convert to the very end of the process.
constinit std::atomic<const KnownPage*> known_pages{nullptr};
constinit std::mutex adding_page;

const KnownPage* FindAmongKnown(std::uint32_t code_page) {
  const KnownPage* page = known_pages.load(std::memory_order_acquire);
  while (page != nullptr && page->code_page != code_page) page = page->next;
  return page;
}

// Null when the system has no such page.
const KnownPage* FindPage(std::uint32_t code_page) {
  if (const KnownPage* known = FindAmongKnown(code_page)) return known;
  UConverter* converter = ThreadConverter(code_page);
  if (converter == nullptr) return nullptr;
  const std::lock_guard lock(adding_page);
  if (const KnownPage* known = FindAmongKnown(code_page)) return known;
  const auto* added = new KnownPage{code_page, MakeTables(code_page, converter),
                                    ExchangesControls(converter), known_pages.load()};
  known_pages.store(added, std::memory_order_release);
  return added;
}

// Other pages ----------------------------------------------------------------------------------

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

// Sends each of the controls to the next one in the circle from `first`.
template <typename Text>
void ExchangeControls(Text& text, char first, char second, char third) {
  using Unit = typename Text::value_type;
  for (Unit& unit : text) {
    if (unit == Unit(first)) {
      unit = Unit(second);
    } else if (unit == Unit(second)) {
      unit = Unit(third);
    } else if (unit == Unit(third)) {
      unit = Unit(first);
    }
  }
}

std::string EncodeByConverter(std::u16string_view text, const KnownPage& page, CodePageFit fit) {
  UConverter* converter = ThreadConverter(page.code_page);
  ucnv_setFallback(converter, fit == CodePageFit::kBest);
  ucnv_resetFromUnicode(converter);
  std::string bytes;
  const char16_t* source = text.data();
  const char16_t* end = source + text.size();
  ConvertAll(bytes, text.size() * 2, [&](char** target, char* limit, UErrorCode* status) {
    ucnv_fromUnicode(converter, target, limit, &source, end, nullptr, true, status);
  });
  if (page.exchanges_controls) ExchangeControls(bytes, '\x7F', '\x1A', '\x1C');
  return bytes;
}

std::u16string DecodeByConverter(std::string_view bytes, const KnownPage& page) {
  UConverter* converter = ThreadConverter(page.code_page);
  ucnv_setFallback(converter, false);
  ucnv_resetToUnicode(converter);
  std::u16string text;
  const char* source = bytes.data();
  const char* end = source + bytes.size();
  ConvertAll(text, bytes.size(), [&](char16_t** target, char16_t* limit, UErrorCode* status) {
    ucnv_toUnicode(converter, target, limit, &source, end, nullptr, true, status);
  });
  if (page.exchanges_controls) ExchangeControls(text, '\x1C', '\x1A', '\x7F');
  return text;
}

// Leaves the fault standing, which ends the conversion. The stock one passes over soft hyphens,
// joiners and the like.
void StopAtFault(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t, UChar32,
                 UConverterCallbackReason, UErrorCode*) {}

bool FitsByConverter(std::u16string_view text, std::uint32_t code_page) {
  UConverter* converter = ThreadConverter(code_page);
  ucnv_setFallback(converter, false);
  ucnv_resetFromUnicode(converter);
  UConverterFromUCallback replace = nullptr;
  const void* context = nullptr;
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter, StopAtFault, nullptr, &replace, &context, &status);
  const char16_t* source = text.data();
  const char16_t* end = source + text.size();
  do {
    char bytes[4096];  // not looked at
    char* target = bytes;
    status = U_ZERO_ERROR;
    ucnv_fromUnicode(converter, &target, std::end(bytes), &source, end, nullptr, true, &status);
  } while (status == U_BUFFER_OVERFLOW_ERROR);
  const bool fits = U_SUCCESS(status);
  status = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter, replace, context, nullptr, nullptr, &status);
  return fits;
}

}  // namespace

std::uint32_t DefaultCodePage() {
  return kCodePageUtf8;
}

bool CodePageKnown(std::uint32_t code_page) {
  return FindPage(code_page) != nullptr;
}

std::optional<std::string> EncodeCodePage(std::u16string_view text, std::uint32_t code_page,
                                          CodePageFit fit) {
  const KnownPage* page = FindPage(code_page);
  if (page == nullptr) return std::nullopt;
  return page->tables ? page->tables->Encode(text, fit) : EncodeByConverter(text, *page, fit);
}

std::optional<std::u16string> DecodeCodePage(std::string_view bytes, std::uint32_t code_page,
                                             LooseBytes loose) {
  const KnownPage* page = FindPage(code_page);
  if (page == nullptr) return std::nullopt;
  return page->tables ? page->tables->Decode(bytes, loose) : DecodeByConverter(bytes, *page);
}

std::optional<bool> FitsCodePage(std::u16string_view text, std::uint32_t code_page) {
  const KnownPage* page = FindPage(code_page);
  if (page == nullptr) return std::nullopt;
  return page->tables ? page->tables->Fits(text) : FitsByConverter(text, code_page);
}

}  // namespace zentavo::platform
