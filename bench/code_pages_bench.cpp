// Greek and English text between UTF-16 and code pages, and texts into HTML, beside ICU's
// converters, the C library's iconv and plain copies.
#include <iconv.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>

#include "ratios.h"
#include "zentavo/framework/code_page.h"
#include "zentavo/genlib/html_text.h"

namespace {

using namespace zentavo;

constexpr std::size_t kUnits = 5'000'000;  // 10 MB of UTF-16

// Words in random order: a text that repeats itself would be learned by the processor.
const String& Text() {
  static const String text = [] {
    constexpr StringView kWords[] = {
        u"Τιμολόγιο", u"olive", u"oil", u"λίτρα", u"extra",    u"1234",     u"Παραλήπτης", u"και",
        u"Street",    u"Αθήνα", u"το",  u"of",    u"ποσότητα", u"quantity", u"ΦΠΑ",        u"24%"};
    std::mt19937 random(1);
    String made;
    while (made.size() < kUnits) {
      made += kWords[random() % std::size(kWords)];
      made += random() % 12 == 0 ? u"\r\n" : u" ";
    }
    return made;
  }();
  return text;
}

struct Page {
  std::uint32_t number;
  const char* icu;
  const char* iconv;
};
constexpr Page kPages[] = {
    {1253, "windows-1253", "CP1253"}, {737, "ibm-737", "CP737"}, {65001, "UTF-8", "UTF-8"}};

// This library ----------------------------------------------------------------------------------

void EncodeZentavo(benchmark::State& state, const Page& page) {
  for (auto _ : state) benchmark::DoNotOptimize(ToCodePage(Text(), page.number).data());
}

void DecodeZentavo(benchmark::State& state, const Page& page) {
  const AnsiString bytes = ToCodePage(Text(), page.number);
  for (auto _ : state) benchmark::DoNotOptimize(FromCodePage(bytes, page.number).data());
}

void FitsZentavo(benchmark::State& state, const Page& page) {
  for (auto _ : state) benchmark::DoNotOptimize(FitsCodePage(Text(), page.number));
}

// ICU, with room for the longest result in one call ---------------------------------------------

void EncodeIcu(benchmark::State& state, const Page& page) {
  UErrorCode status = U_ZERO_ERROR;
  UConverter* converter = ucnv_open(page.icu, &status);
  const int room = UCNV_GET_MAX_BYTES_FOR_STRING(static_cast<int>(Text().size()),
                                                 ucnv_getMaxCharSize(converter));
  for (auto _ : state) {
    std::string bytes(static_cast<std::size_t>(room), '\0');
    bytes.resize(static_cast<std::size_t>(ucnv_fromUChars(
        converter, bytes.data(), room, Text().data(), static_cast<int>(Text().size()), &status)));
    benchmark::DoNotOptimize(bytes.data());
  }
  ucnv_close(converter);
}

void DecodeIcu(benchmark::State& state, const Page& page) {
  const AnsiString bytes = ToCodePage(Text(), page.number);
  UErrorCode status = U_ZERO_ERROR;
  UConverter* converter = ucnv_open(page.icu, &status);
  for (auto _ : state) {
    String text(bytes.size(), u'\0');
    text.resize(static_cast<std::size_t>(ucnv_toUChars(converter, text.data(),
                                                       static_cast<int>(text.size()), bytes.data(),
                                                       static_cast<int>(bytes.size()), &status)));
    benchmark::DoNotOptimize(text.data());
  }
  ucnv_close(converter);
}

// iconv, the same way ---------------------------------------------------------------------------

template <typename Result, typename Source>
void ConvertIconv(benchmark::State& state, const char* to, const char* from, const Source& source,
                  std::size_t room) {
  iconv_t converter = iconv_open(to, from);
  constexpr std::size_t kUnit = sizeof(typename Result::value_type);
  for (auto _ : state) {
    Result result(room, typename Result::value_type());
    char* in = const_cast<char*>(reinterpret_cast<const char*>(source.data()));
    std::size_t in_left = source.size() * sizeof(typename Source::value_type);
    char* out = reinterpret_cast<char*>(result.data());
    std::size_t out_left = room * kUnit;
    iconv(converter, &in, &in_left, &out, &out_left);
    result.resize(room - out_left / kUnit);
    benchmark::DoNotOptimize(result.data());
    if (in_left != 0) state.SkipWithError("not converted");
  }
  iconv_close(converter);
}

void EncodeIconv(benchmark::State& state, const Page& page) {
  ConvertIconv<std::string>(state, page.iconv, "UTF-16LE", Text(), Text().size() * 3);
}

void DecodeIconv(benchmark::State& state, const Page& page) {
  const AnsiString bytes = ToCodePage(Text(), page.number);
  ConvertIconv<String>(state, "UTF-16LE", page.iconv, bytes, bytes.size());
}

// HTML ------------------------------------------------------------------------------------------

// The text with links in it.
const String& LinkText() {
  static const String text = [] {
    String made;
    for (std::size_t at = 0; at < Text().size(); at += 1000) {
      made.append(Text(), at, 1000).append(u"<Open$OPEN 1> external ");
    }
    return made;
  }();
  return text;
}

void PageZentavo(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(XCHToHTML(LinkText()).data());
}

void FixZentavo(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(fixHtmlCode(LinkText()).data());
}

// A copy, and one look at every unit.
void CopyAndScan(benchmark::State& state) {
  for (auto _ : state) {
    String copy;
    copy.reserve(LinkText().size());
    for (const char16_t unit : LinkText()) {
      if (unit != u'<') copy += unit;
    }
    benchmark::DoNotOptimize(copy.data());
  }
}

void CopyThenCount(benchmark::State& state) {
  for (auto _ : state) {
    const String copy = LinkText();
    benchmark::DoNotOptimize(std::count(copy.begin(), copy.end(), u'<'));
  }
}

using PageBenchmark = void (*)(benchmark::State&, const Page&);

void Add(const std::string& name, PageBenchmark function, const Page& page) {
  benchmark::RegisterBenchmark(name.c_str(), [function, &page](benchmark::State& state) {
    function(state, page);
  })->Unit(benchmark::kMillisecond);
}

void AddText(const char* name, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
}

void AddPage(const Page& page) {
  const std::string number = std::to_string(page.number);
  Add("to " + number + "/zentavo", EncodeZentavo, page);
  Add("to " + number + "/ICU", EncodeIcu, page);
  Add("to " + number + "/iconv", EncodeIconv, page);
  Add("from " + number + "/zentavo", DecodeZentavo, page);
  Add("from " + number + "/ICU", DecodeIcu, page);
  Add("from " + number + "/iconv", DecodeIconv, page);
  Add("fits " + number + "/zentavo", FitsZentavo, page);
  Add("fits " + number + "/conversion", EncodeZentavo, page);
}

}  // namespace

int main(int argc, char** argv) {
  for (const Page& page : kPages) AddPage(page);
  AddText("XCHToHTML/zentavo", PageZentavo);
  AddText("XCHToHTML/copy by units", CopyAndScan);
  AddText("XCHToHTML/copy, count", CopyThenCount);
  AddText("fixHtmlCode/zentavo", FixZentavo);
  AddText("fixHtmlCode/copy by units", CopyAndScan);
  AddText("fixHtmlCode/copy, count", CopyThenCount);
  return bench::RunWithRatios(argc, argv);
}
