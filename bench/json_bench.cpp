// JSON trees beside RapidJSON with UTF-16 trees and nlohmann: reading, writing, lookups, memory.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <rapidjson/document.h>
#include <rapidjson/encodedstream.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <random>
#include <tuple>
#include <unordered_map>

#include "ratios.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"

namespace {

using namespace zentavo;

using Utf16 = rapidjson::UTF16<char16_t>;
using RapidDocument = rapidjson::GenericDocument<Utf16>;
using RapidBuffer = rapidjson::GenericStringBuffer<Utf16>;

struct Document {
  std::string name;
  std::string utf8;
  String utf16;
};

std::string Number(std::mt19937& random, unsigned limit) {
  return std::to_string(random() % limit);
}

std::string Pick(std::mt19937& random, std::initializer_list<const char*> words) {
  return words.begin()[random() % words.size()];
}

std::string Words(std::mt19937& random, int count) {
  std::string text;
  for (int word = 0; word < count; ++word) {
    text += Pick(random, {"invoice", "παράδοση", "warehouse", "τιμολόγιο", "customer", "ποσότητα",
                          "delivery", "Αθήνα", "order", "προμηθευτής"});
    text += ' ';
  }
  text.pop_back();
  return text;
}

void Add(std::string& text, std::initializer_list<std::string_view> parts) {
  for (const std::string_view part : parts) text += part;
}

void AddLine(std::string& text, std::mt19937& random) {
  Add(text, {"{\"item\": \"A-", Number(random, 9999), "\", \"description\": \"", Words(random, 3),
             "\", \"quantity\": ", Number(random, 100), ", \"price\": ", Number(random, 1000), ".",
             std::to_string(10 + random() % 90), "}"});
}

std::string Business() {
  std::mt19937 random(1);
  std::string text(1, '[');
  for (int order = 100000; text.size() < 2'000'000; ++order) {
    Add(text,
        {order == 100000 ? "" : ",\n", "{\"orderId\": ", std::to_string(order),
         ", \"customer\": \"", Words(random, 2), "\", \"remarks\": \"", Words(random, 6),
         "\", \"paid\": ", Pick(random, {"true", "false"}), ", \"discount\": null, \"lines\": ["});
    const auto lines = 1 + random() % 6;
    for (std::size_t line = 0; line < lines; ++line) {
      if (line > 0) text += ", ";
      AddLine(text, random);
    }
    Add(text, {"], \"total\": ", Number(random, 100000), ".25}"});
  }
  text += ']';
  return text;
}

std::string Texts() {
  std::mt19937 random(2);
  std::string text = "[\"start\"";
  while (text.size() < 2'000'000) Add(text, {",\"", Words(random, 40), "\\n\\\"end\\\"\""});
  text += ']';
  return text;
}

std::string Numbers() {
  std::mt19937 random(3);
  std::string text = "[0";
  while (text.size() < 2'000'000) {
    Add(text, {",", Number(random, 1000000), ",-", Number(random, 10000), ".",
               std::to_string(100 + random() % 900), ",", Number(random, 100), ".5"});
  }
  text += ']';
  return text;
}

std::string Deep() {
  std::string text = "[0";
  while (text.size() < 2'000'000) {
    text += ",";
    for (int level = 0; level < 100; ++level) text += "{\"a\":[";
    text += "1";
    for (int level = 0; level < 100; ++level) text += "]}";
  }
  text += ']';
  return text;
}

const std::vector<Document>& Documents() {
  static const std::vector<Document> documents = [] {
    std::vector<Document> all;
    const std::pair<const char*, std::string> texts[] = {
        {"business", Business()}, {"texts", Texts()}, {"numbers", Numbers()}, {"deep", Deep()}};
    for (const auto& [name, text] : texts) all.push_back({name, text, FromUtf8(text)});
    return all;
  }();
  return documents;
}

void ReadRapid16(const Document& document) {
  RapidDocument tree;
  rapidjson::GenericStringStream<Utf16> stream(document.utf16.c_str());
  tree.ParseStream<0, Utf16>(stream);
  if (tree.HasParseError()) std::abort();
  benchmark::DoNotOptimize(tree);
}
void ReadRapid8(const Document& document) {
  RapidDocument tree;
  rapidjson::StringStream stream(document.utf8.c_str());
  tree.ParseStream<0, rapidjson::UTF8<>>(stream);
  if (tree.HasParseError()) std::abort();
  benchmark::DoNotOptimize(tree);
}
void Read16(const Document& document) {
  auto tree = ReadJSON(StringView(document.utf16));
  benchmark::DoNotOptimize(tree);
}
void Read8(const Document& document) {
  auto tree = ReadJSONUtf8(document.utf8);
  benchmark::DoNotOptimize(tree);
}
void ReadNlohmann(const Document& document) {
  auto tree = nlohmann::json::parse(document.utf8);
  benchmark::DoNotOptimize(tree);
}

template <void kRead(const Document&)>
void Read(benchmark::State& state, const Document& document) {
  for (auto _ : state) kRead(document);
}

void Write(benchmark::State& state, const Document& document) {
  const auto tree = ReadJSON(StringView(document.utf16));
  for (auto _ : state) benchmark::DoNotOptimize(valueToString(tree.get()));
}
void WriteRapid(benchmark::State& state, const Document& document) {
  RapidDocument tree;
  rapidjson::GenericStringStream<Utf16> stream(document.utf16.c_str());
  tree.ParseStream<0, Utf16>(stream);
  for (auto _ : state) {
    RapidBuffer buffer;
    rapidjson::Writer<RapidBuffer, Utf16, Utf16> writer(buffer);
    tree.Accept(writer);
    benchmark::DoNotOptimize(String(buffer.GetString(), buffer.GetSize() / sizeof(char16_t)));
  }
}
// UTF-8, which has the characters as they are where the others write escapes.
void WriteNlohmann(benchmark::State& state, const Document& document) {
  const auto tree = nlohmann::json::parse(document.utf8);
  for (auto _ : state) benchmark::DoNotOptimize(tree.dump());
}
// UTF-8 with escapes for all that is not ASCII.
void WriteNlohmannEscaped(benchmark::State& state, const Document& document) {
  const auto tree = nlohmann::json::parse(document.utf8);
  for (auto _ : state) benchmark::DoNotOptimize(tree.dump(-1, ' ', true));
}

std::size_t BytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void CompareMemory(const Document& d) {
  const std::size_t start = BytesInUse();
  const auto tree = ReadJSON(StringView(d.utf16));
  const std::size_t ours = BytesInUse() - start;
  const std::size_t middle = BytesInUse();
  const auto peer = nlohmann::json::parse(d.utf8);
  const std::size_t theirs = BytesInUse() - middle;
  std::printf("%-9s memory %.2f of nlohmann's (%zu and %zu bytes)\n", d.name.c_str(),
              static_cast<double>(ours) / static_cast<double>(theirs), ours, theirs);
}

struct KeySet {
  TJSONObject object;
  std::unordered_map<String, int> map;
  std::vector<String> keys;
};

const KeySet& Keys() {
  static const KeySet set = [] {
    KeySet made;
    for (int index = 0; index < 100000; ++index) {
      made.keys.push_back(u"customer/" + IntToStr(std::int64_t{index} * 7919 % 1000003));
      made.object.put(made.keys.back(), index);
      made.map.emplace(made.keys.back(), index);
    }
    made.object = TJSONObject(made.object.toString());
    std::shuffle(made.keys.begin(), made.keys.end(), std::mt19937(4));
    return made;
  }();
  return set;
}

std::int64_t LookUpObject() {
  std::int64_t sum = 0;
  for (const String& key : Keys().keys) sum += Keys().object.getInt(key);
  return sum;
}
std::int64_t LookUpMap() {
  std::int64_t sum = 0;
  for (const String& key : Keys().keys) sum += Keys().map.find(key)->second;
  return sum;
}

void LookUp(benchmark::State& state) {
  if (LookUpObject() != LookUpMap()) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(LookUpObject());
}
void LookUpInMap(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(LookUpMap());
}

void RegisterAll() {
  using Function = void (*)(benchmark::State&, const Document&);
  const std::tuple<const char*, const char*, Function> works[] = {
      {"read UTF-16", "zentavo", Read<Read16>},
      {"read UTF-16", "RapidJSON", Read<ReadRapid16>},
      {"read UTF-16", "nlohmann", Read<ReadNlohmann>},
      {"read UTF-8", "zentavo", Read<Read8>},
      {"read UTF-8", "RapidJSON", Read<ReadRapid8>},
      {"read UTF-8", "nlohmann", Read<ReadNlohmann>},
      {"write", "zentavo", Write},
      {"write", "RapidJSON", WriteRapid},
      {"write", "nlohmann", WriteNlohmann},
      {"write", "nlohmann, escaped", WriteNlohmannEscaped}};
  for (const Document& document : Documents()) {
    for (const auto& [work, who, function] : works) {
      benchmark::RegisterBenchmark(
          (document.name + " " + work + "/" + who).c_str(),
          [function = function, &document](benchmark::State& state) { function(state, document); })
          ->Unit(benchmark::kMicrosecond);
    }
  }
  benchmark::RegisterBenchmark("look-ups of 100,000 keys/zentavo", LookUp)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("look-ups of 100,000 keys/unordered_map", LookUpInMap)
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
  for (const Document& document : Documents()) CompareMemory(document);
  RegisterAll();
  return bench::RunWithRatios(argc, argv);
}
