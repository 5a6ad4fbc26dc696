// Prints what the platform's single-byte code pages do:
//
//   code_page_record_helper pages    lines for recorded_pages.txt
//   code_page_record_helper fits     rows of C++ for zentavo/platform/linux/best_fits.inc
//
// Run on Windows it records what the library does elsewhere. What stands in the project was
// recorded under Wine, not on Windows itself.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#include "single_byte_pages.h"

namespace {

using namespace zentavo::platform;
using zentavo::testing::AllUnits;
using zentavo::testing::RecordOf;

constexpr std::uint32_t kPages[] = {437,   720,   737,   775,   850,   852,   855,   857,   860,
                                    861,   862,   863,   864,   865,   866,   869,   874,   1250,
                                    1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258,  10000,
                                    10006, 10007, 10029, 10081, 20866, 21866, 28591, 28592, 28593,
                                    28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605};

void PrintPages() {
  for (const std::uint32_t page : kPages) std::printf("%s\n", RecordOf(page).c_str());
}

// A row: so many units from the first on take the bytes from the first on, in the pages of the set.
struct Run {
  unsigned unit;
  unsigned count;
  unsigned byte;
  std::uint64_t pages;
};

// By unit and byte, the pages where the one takes the place of the other.
std::map<std::pair<unsigned, unsigned>, std::uint64_t> BestFits() {
  const std::u16string all = AllUnits();
  std::map<std::pair<unsigned, unsigned>, std::uint64_t> fits;
  for (std::size_t index = 0; index < std::size(kPages); ++index) {
    const std::string exact = EncodeCodePage(all, kPages[index]).value();
    const std::string best = EncodeCodePage(all, kPages[index], CodePageFit::kBest).value();
    for (unsigned unit = 0; unit < all.size(); ++unit) {
      if (exact[unit] == best[unit]) continue;
      fits[{unit, static_cast<unsigned char>(best[unit])}] |= std::uint64_t{1} << index;
    }
  }
  return fits;
}

std::vector<Run> Runs() {
  std::vector<Run> runs;
  for (const auto& [fit, pages] : BestFits()) {
    const auto continued = std::find_if(runs.rbegin(), runs.rend(), [&](const Run& run) {
      return run.unit + run.count == fit.first && run.byte + run.count == fit.second &&
             run.pages == pages && run.count < 255;
    });
    if (continued != runs.rend()) {
      ++continued->count;
    } else {
      runs.push_back({fit.first, 1, fit.second, pages});
    }
  }
  return runs;
}

void PrintFits() {
  const std::vector<Run> runs = Runs();
  std::vector<std::uint64_t> sets;
  for (const Run& run : runs) sets.push_back(run.pages);
  std::sort(sets.begin(), sets.end());
  sets.erase(std::unique(sets.begin(), sets.end()), sets.end());
  std::printf("constexpr std::uint32_t kPages[] = {");
  for (const std::uint32_t page : kPages) std::printf("%u,", page);
  std::printf("};\nconstexpr std::uint64_t kPageSets[] = {");
  for (const std::uint64_t set : sets) std::printf("0x%llX,", static_cast<unsigned long long>(set));
  std::printf("};\nconstexpr FitRun kFitRuns[] = {");
  for (const Run& run : runs) {
    std::printf(
        "{0x%04X,%u,0x%02X,%d},", run.unit, run.count, run.byte,
        static_cast<int>(std::lower_bound(sets.begin(), sets.end(), run.pages) - sets.begin()));
  }
  std::printf("};\n");
}

}  // namespace

int main(int count, char** arguments) {
  if (count == 2 && std::strcmp(arguments[1], "pages") == 0) {
    PrintPages();
  } else if (count == 2 && std::strcmp(arguments[1], "fits") == 0) {
    PrintFits();
  } else {
    return 2;
  }
  return 0;
}
