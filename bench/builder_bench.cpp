// A million appends of words and integers, 8 MB of text, beside std::u16string and QString.
#include <QString>

#include <charconv>
#include <string>

#include "ratios.h"
#include "zentavo/foundation/str_builder.h"

namespace {

constexpr int kAppends = 1'000'000;
constexpr std::int32_t kFinalSize = 4'200'000;  // units
constexpr char16_t kWord[] = u"word ";
constexpr int kFirstInteger = 100;

template <typename AddWord, typename AddInteger>
void AppendAll(AddWord add_word, AddInteger add_integer) {
  for (int append = 0; append < kAppends; append += 2) {
    add_word();
    add_integer(kFirstInteger + append % 900);
  }
}

void Builder(benchmark::State& state, std::int32_t step) {
  for (auto _ : state) {
    zentavo::TStrBuilder builder(u"", step);
    AppendAll([&] { builder.Add(kWord); }, [&](int value) { builder.AddInteger(value); });
    benchmark::DoNotOptimize(builder.View());
  }
}

void StdString(benchmark::State& state, bool reserve) {
  for (auto _ : state) {
    std::u16string text;
    if (reserve) text.reserve(kFinalSize);
    AppendAll([&] { text += kWord; },
              [&](int value) {
                char digits[12];
                const char* end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
                text.append(static_cast<const char*>(digits), end);
              });
    benchmark::DoNotOptimize(text.data());
  }
}

void QtString(benchmark::State& state) {
  for (auto _ : state) {
    QString text;
    const QString word = QString::fromUtf16(kWord);
    AppendAll([&] { text += word; }, [&](int value) { text += QString::number(value); });
    benchmark::DoNotOptimize(text.data());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const auto in_ms = [](auto* registered) { registered->Unit(benchmark::kMillisecond); };
  const auto add = [&](const char* name, auto function) {
    in_ms(benchmark::RegisterBenchmark(name, function));
  };
  add("growing/zentavo", [](benchmark::State& s) { Builder(s, 4096); });
  add("growing/u16string", [](benchmark::State& s) { StdString(s, false); });
  add("growing/QString", QtString);
  add("reserved/zentavo", [](benchmark::State& s) { Builder(s, kFinalSize); });
  add("reserved/u16string", [](benchmark::State& s) { StdString(s, true); });
  return bench::RunWithRatios(argc, argv);
}
