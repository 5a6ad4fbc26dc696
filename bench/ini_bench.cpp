// An ini file of 100,000 keys in 1,000 sections: load it, read 100,000 keys at random, write
// 10,000, save it. Beside GLib's GKeyFile, Qt's QSettings and SimpleIni.
//
// Each run loads a fresh copy of the file, since QSettings remembers files by their names. The keys
// to look up are prepared in the text type of each library.
// The package leaves out the header that the conversions need; 8-bit text needs none.
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <QSettings>
#include <QString>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "zentavo/config/mem_ini_file.h"

namespace {

constexpr int kSections = 1000;
constexpr int kKeysPerSection = 100;
constexpr int kReads = 100'000;
constexpr int kWrites = 10'000;
constexpr int kRuns = 15;

struct Entry {
  std::string section;
  std::string key;
  std::string value;
};

Entry EntryOf(int index) {
  char key[16];
  std::snprintf(key, sizeof key, "Key%05d", index % kKeysPerSection * 37);
  return {"Section" + std::to_string(index / kKeysPerSection), key,
          "some value " + std::to_string(1'000'000 + index)};
}

const std::filesystem::path& Folder() {
  static const std::filesystem::path folder = [] {
    // A folder of the user's choice tells what the disk's share is.
    const char* chosen = std::getenv("INI_BENCH_FOLDER");
    const auto path = (chosen != nullptr ? std::filesystem::path(chosen)
                                         : std::filesystem::temp_directory_path()) /
                      "zentavo_ini_bench";
    std::filesystem::create_directories(path);
    return path;
  }();
  return folder;
}

const std::string& Master() {
  static const std::string path = [] {
    const std::string name = (Folder() / "master.ini").string();
    std::ofstream file(name);
    for (int i = 0; i < kSections * kKeysPerSection; ++i) {
      const Entry entry = EntryOf(i);
      if (i % kKeysPerSection == 0) file << (i == 0 ? "[" : "\n[") << entry.section << "]\n";
      file << entry.key << '=' << entry.value << '\n';
    }
    return name;
  }();
  return path;
}

std::string FreshCopy() {
  static int count = 0;
  std::string name = (Folder() / ("copy" + std::to_string(count++) + ".ini")).string();
  std::filesystem::copy_file(Master(), name, std::filesystem::copy_options::overwrite_existing);
  return name;
}

std::vector<Entry> RandomEntries(int count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<Entry> entries;
  for (int i = 0; i < count; ++i) {
    entries.push_back(EntryOf(static_cast<int>(random() % (kSections * kKeysPerSection))));
  }
  return entries;
}

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "ini_bench: %s\n", what);
  std::exit(1);
}

// The libraries. Each has its Text, and one object is one file.

struct Zentavo {
  static constexpr const char* kName = "zentavo";
  struct Keys {
    explicit Keys(const Entry& e)
        : section(zentavo::FromUtf8(e.section)),
          key(zentavo::FromUtf8(e.key)),
          value(zentavo::FromUtf8(e.value)) {}
    zentavo::String section, key, value;
  };

  void Load(const std::string& path) { ini.emplace(zentavo::FromUtf8(path)); }
  bool Read(const Keys& keys) { return !ini->ReadString(keys.section, keys.key, {}).empty(); }
  void Write(const Keys& keys) { ini->WriteString(keys.section, keys.key, keys.value); }
  void Save() { ini->UpdateFile(); }

  std::optional<zentavo::TXMemIniFile> ini;
};

struct GLib {
  static constexpr const char* kName = "GKeyFile";
  using Keys = Entry;

  void Load(const std::string& file) {
    path = file;
    ini.reset(g_key_file_new());
    Require(g_key_file_load_from_file(ini.get(), path.c_str(), G_KEY_FILE_NONE, nullptr),
            "GKeyFile does not load");
  }
  bool Read(const Keys& keys) {
    char* value = g_key_file_get_string(ini.get(), keys.section.c_str(), keys.key.c_str(), nullptr);
    const bool found = value != nullptr;
    g_free(value);
    return found;
  }
  void Write(const Keys& keys) {
    g_key_file_set_string(ini.get(), keys.section.c_str(), keys.key.c_str(), keys.value.c_str());
  }
  void Save() {
    Require(g_key_file_save_to_file(ini.get(), path.c_str(), nullptr), "GKeyFile does not save");
  }

  struct Free {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
  };
  std::unique_ptr<GKeyFile, Free> ini;
  std::string path;
};

struct Qt {
  static constexpr const char* kName = "QSettings";
  struct Keys {
    explicit Keys(const Entry& e)
        : name(QString::fromStdString(e.section + "/" + e.key)),
          value(QString::fromStdString(e.value)) {}
    QString name, value;
  };

  void Load(const std::string& path) {
    ini = std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat);
  }
  bool Read(const Keys& keys) { return !ini->value(keys.name).toString().isEmpty(); }
  void Write(const Keys& keys) { ini->setValue(keys.name, keys.value); }
  void Save() {
    ini->sync();
    Require(ini->status() == QSettings::NoError, "QSettings does not save");
  }

  std::unique_ptr<QSettings> ini;
};

struct Simple {
  static constexpr const char* kName = "SimpleIni";
  using Keys = Entry;

  void Load(const std::string& file) {
    path = file;
    ini = std::make_unique<CSimpleIniA>();
    ini->SetUnicode();
    Require(ini->LoadFile(path.c_str()) >= 0, "SimpleIni does not load");
  }
  bool Read(const Keys& keys) {
    return ini->GetValue(keys.section.c_str(), keys.key.c_str()) != nullptr;
  }
  void Write(const Keys& keys) {
    ini->SetValue(keys.section.c_str(), keys.key.c_str(), keys.value.c_str());
  }
  void Save() { Require(ini->SaveFile(path.c_str(), false) >= 0, "SimpleIni does not save"); }

  std::unique_ptr<CSimpleIniA> ini;
  std::string path;
};

// Phases of a run, in milliseconds.
enum Phase { kLoad, kRead, kWrite, kSave, kWhole, kPhases };
constexpr std::array<const char*, kPhases> kPhaseNames = {"load", "read", "write", "save", "whole"};

// Processor time, which other programs on the machine disturb less, and the wall clock, which
// counts the waiting for the disk.
struct Times {
  std::array<double, kPhases> processor{};
  std::array<double, kPhases> elapsed{};
};

std::map<std::string, std::vector<Times>>& Results() {
  static std::map<std::string, std::vector<Times>> results;
  return results;
}

double ProcessorMilliseconds() {
  return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

template <typename Work>
void Measure(Times& times, Phase phase, Work work) {
  const auto start = std::chrono::steady_clock::now();
  const double processor_start = ProcessorMilliseconds();
  work();
  times.processor[phase] = ProcessorMilliseconds() - processor_start;
  times.elapsed[phase] =
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  times.processor[kWhole] += times.processor[phase];
  times.elapsed[kWhole] += times.elapsed[phase];
}

template <typename Library>
Times RunOnce(const std::vector<typename Library::Keys>& reads,
              const std::vector<typename Library::Keys>& writes) {
  const std::string path = FreshCopy();
  Library library;
  int found = 0;
  Times times;
  Measure(times, kLoad, [&] { library.Load(path); });
  Measure(times, kRead, [&] {
    for (const auto& keys : reads) found += library.Read(keys);
  });
  Measure(times, kWrite, [&] {
    for (const auto& keys : writes) library.Write(keys);
  });
  Measure(times, kSave, [&] { library.Save(); });
  Require(found == kReads, "keys are missing");
  std::filesystem::remove(path);
  return times;
}

using Clock = std::array<double, kPhases> Times::*;

double Best(const std::vector<Times>& runs, Clock clock, Phase phase) {
  double best = (runs.front().*clock)[phase];
  for (const Times& times : runs) best = std::min(best, (times.*clock)[phase]);
  return best;
}

template <typename Library>
void LoadReadWriteSave(benchmark::State& state) {
  std::vector<typename Library::Keys> reads;
  std::vector<typename Library::Keys> writes;
  for (Entry entry : RandomEntries(kReads, 1)) {
    entry.value.clear();
    reads.emplace_back(entry);
  }
  for (Entry entry : RandomEntries(kWrites, 2)) {
    entry.value += " changed";
    writes.emplace_back(entry);
  }
  std::vector<Times>& runs = Results()[Library::kName];
  for (auto _ : state) {
    runs.push_back(RunOnce<Library>(reads, writes));
    state.SetIterationTime(runs.back().elapsed[kWhole] / 1000);
  }
  for (const Phase phase : {kLoad, kRead, kWrite, kSave}) {
    state.counters[kPhaseNames[phase]] = runs.back().elapsed[phase];
  }
}

BENCHMARK(LoadReadWriteSave<Zentavo>)->UseManualTime()->Iterations(1)->Repetitions(kRuns);
BENCHMARK(LoadReadWriteSave<GLib>)->UseManualTime()->Iterations(1)->Repetitions(kRuns);
BENCHMARK(LoadReadWriteSave<Qt>)->UseManualTime()->Iterations(1)->Repetitions(kRuns);
BENCHMARK(LoadReadWriteSave<Simple>)->UseManualTime()->Iterations(1)->Repetitions(kRuns);

void PrintRatios(const char* title, Clock clock) {
  const auto own = Results().find(Zentavo::kName);
  if (own == Results().end()) return;
  std::printf("\n%s, best ms (and times as long as zentavo)\n%-10s", title, "");
  for (const char* phase : kPhaseNames) std::printf("%18s", phase);
  for (const auto& [name, runs] : Results()) {
    std::printf("\n%-10s", name.c_str());
    for (const Phase phase : {kLoad, kRead, kWrite, kSave, kWhole}) {
      const double best = Best(runs, clock, phase);
      std::printf("%9.2f (%5.2fx)", best, best / Best(own->second, clock, phase));
    }
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  // The libraries take turns, so that a busy moment of the machine meets them all.
  char interleave[] = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, interleave);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  benchmark::RunSpecifiedBenchmarks();
  PrintRatios("processor time", &Times::processor);
  PrintRatios("elapsed", &Times::elapsed);
  std::filesystem::remove_all(Folder());
}
