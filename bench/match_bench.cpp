// Matching of two tables of N rows and five columns: imported invoices against existing ones, the
// same in another order, where one cell in twelve differs.
//
// The peers do less: SQLite, with its tables filled in memory and indexed, and the bare hash join
// only pair rows of the same document number, and take the best pairs greedily.
#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "ratios.h"
#include "zentavo/optimise/random_stream.h"
#include "zentavo/optimise/scoring_algorithm.h"

// Memory in use, for the cost of a row -----------------------------------------------------------

namespace {
// A block's size stands before it.
constexpr std::size_t kHeader = alignof(std::max_align_t);
std::atomic<std::size_t> bytes_in_use{0};
std::atomic<std::size_t> most_bytes{0};
}  // namespace

// Not inlined, where the compiler would take a block and its header for two.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const block = std::malloc(size + kHeader);
  if (block == nullptr) throw std::bad_alloc();
  *static_cast<std::size_t*>(block) = size;
  const std::size_t now = bytes_in_use.fetch_add(size, std::memory_order_relaxed) + size;
  if (now > most_bytes.load(std::memory_order_relaxed)) most_bytes = now;
  return static_cast<char*>(block) + kHeader;
}
[[gnu::noinline]] void operator delete(void* pointer) noexcept {
  if (pointer == nullptr) return;
  void* const block = static_cast<char*>(pointer) - kHeader;
  bytes_in_use.fetch_sub(*static_cast<std::size_t*>(block), std::memory_order_relaxed);
  std::free(block);
}
void operator delete(void* pointer, std::size_t) noexcept {
  operator delete(pointer);
}

namespace {

using zentavo::String;
using zentavo::TScoreRow;
using zentavo::Variant;

constexpr std::size_t kColumns = 5;
constexpr std::int32_t kWeights[kColumns] = {16, 8, 4, 2, 1};

// Document, amount, customer, day, city.
TScoreRow MakeRow(std::uint32_t number, zentavo::RandomStream& random, std::uint32_t rows) {
  const auto text = [](const char* front, std::uint32_t value) {
    return Variant(zentavo::FromUtf8(front + std::to_string(value)));
  };
  return {text("INV-2024-", 1000000 + number), static_cast<double>(random.Below(1000000)) / 100,
          text("C-", random.Below(rows / 5 + 1)), static_cast<std::int32_t>(random.Below(365)),
          text("City ", random.Below(200))};
}

struct Tables {
  std::vector<TScoreRow> left, right;
};

const Tables& TablesOf(std::uint32_t rows) {
  static std::unordered_map<std::uint32_t, Tables> made;
  Tables& tables = made[rows];
  if (!tables.left.empty()) return tables;
  zentavo::RandomStream random(rows);
  for (std::uint32_t i = 0; i < rows; ++i) tables.left.push_back(MakeRow(i, random, rows));
  tables.right = tables.left;
  for (TScoreRow& row : tables.right) {
    TScoreRow other = MakeRow(rows + random.Below(rows), random, rows);
    for (std::size_t c = 0; c < kColumns; ++c) {
      if (random.Below(12) == 0) row[c] = std::move(other[c]);
    }
  }
  for (std::uint32_t i = rows; i > 1; --i) {
    std::swap(tables.right[i - 1], tables.right[random.Below(i)]);
  }
  return tables;
}

void Zentavo(benchmark::State& state, std::uint32_t rows) {
  const Tables& tables = TablesOf(rows);
  const std::size_t before = bytes_in_use;
  most_bytes = before;
  std::size_t matches = 0;
  for (auto _ : state) {
    zentavo::TScoringAlgorithm scoring;
    matches = scoring.Execute(tables.left, tables.right, kWeights, 0)[0].size();
    benchmark::DoNotOptimize(matches);
  }
  state.counters["matches"] = static_cast<double>(matches);
  state.counters["bytes_a_row"] = static_cast<double>(most_bytes - before) / (2.0 * rows);
}

// Pairs and what is left of them -----------------------------------------------------------------

struct Pair {
  std::int32_t score, left, right;
};

std::size_t TakeBest(const std::vector<Pair>& pairs, std::size_t rows) {
  std::vector<bool> left_used(rows), right_used(rows);
  std::size_t matches = 0;
  for (const Pair& pair : pairs) {
    const auto left = static_cast<std::size_t>(pair.left);
    const auto right = static_cast<std::size_t>(pair.right);
    if (left_used[left] || right_used[right]) continue;
    left_used[left] = right_used[right] = true;
    ++matches;
  }
  return matches;
}

void SortPairs(std::vector<Pair>& pairs) {
  std::sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) {
    return std::tuple(-a.score, a.left, a.right) < std::tuple(-b.score, b.left, b.right);
  });
}

std::int32_t ScoreOf(const TScoreRow& left, const TScoreRow& right) {
  std::int32_t score = 0;
  for (std::size_t c = 0; c < kColumns; ++c) {
    const bool equal = left[c].IsString() ? left[c].StringValue() == right[c].StringValue()
                       : c == 1           ? left[c].DoubleValue() == right[c].DoubleValue()
                                          : left[c].Int32Value() == right[c].Int32Value();
    if (equal) score += kWeights[c];
  }
  return score;
}

// SQLite -----------------------------------------------------------------------------------------

void Check(int code, sqlite3* database) {
  if (code == SQLITE_OK || code == SQLITE_DONE || code == SQLITE_ROW) return;
  std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(database));
  std::abort();
}

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

Database Open() {
  sqlite3* database = nullptr;
  Check(sqlite3_open(":memory:", &database), database);
  return {database, sqlite3_close};
}

Statement Prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  Check(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr), database);
  return {statement, sqlite3_finalize};
}

void Bind(sqlite3_stmt* statement, int place, const Variant& value) {
  if (value.IsString()) {
    const zentavo::StringView text = value.StringValue();
    sqlite3_bind_text16(statement, place, text.data(), static_cast<int>(text.size() * 2),
                        SQLITE_STATIC);
  } else if (value.Kind() == zentavo::VariantKind::kDouble) {
    sqlite3_bind_double(statement, place, value.DoubleValue());
  } else {
    sqlite3_bind_int(statement, place, value.Int32Value());
  }
}

void Fill(sqlite3* database, const char* sql, const std::vector<TScoreRow>& rows) {
  const Statement insert = Prepare(database, sql);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    sqlite3_bind_int(insert.get(), 1, static_cast<int>(i));
    for (std::size_t c = 0; c < kColumns; ++c) {
      Bind(insert.get(), static_cast<int>(c) + 2, rows[i][c]);
    }
    Check(sqlite3_step(insert.get()), database);
    sqlite3_reset(insert.get());
  }
}

Database FilledDatabase(const Tables& tables) {
  Database database = Open();
  const auto run = [&](const char* sql) {
    Check(sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr), database.get());
  };
  run("PRAGMA encoding='UTF-16le'; BEGIN;"
      "CREATE TABLE l (id INTEGER PRIMARY KEY, doc TEXT, amount REAL, cust TEXT, day INT, city "
      "TEXT);"
      "CREATE TABLE r (id INTEGER PRIMARY KEY, doc TEXT, amount REAL, cust TEXT, day INT, city "
      "TEXT);");
  Fill(database.get(), "INSERT INTO l VALUES (?,?,?,?,?,?)", tables.left);
  Fill(database.get(), "INSERT INTO r VALUES (?,?,?,?,?,?)", tables.right);
  run("CREATE INDEX r_doc ON r (doc); COMMIT;");
  return database;
}

std::size_t JoinInDatabase(sqlite3* database, std::size_t rows) {
  const Statement query = Prepare(
      database,
      "SELECT 16 + (l.amount = r.amount) * 8 + (l.cust = r.cust) * 4 + (l.day = r.day) * 2 +"
      " (l.city = r.city) AS score, l.id, r.id FROM l JOIN r ON l.doc = r.doc"
      " ORDER BY score DESC, l.id, r.id");
  std::vector<Pair> pairs;
  while (sqlite3_step(query.get()) == SQLITE_ROW) {
    pairs.push_back({sqlite3_column_int(query.get(), 0), sqlite3_column_int(query.get(), 1),
                     sqlite3_column_int(query.get(), 2)});
  }
  return TakeBest(pairs, rows);
}

void Sqlite(benchmark::State& state, std::uint32_t rows) {
  const Tables& tables = TablesOf(rows);
  std::size_t matches = 0;
  for (auto _ : state) {
    const Database database = FilledDatabase(tables);
    matches = JoinInDatabase(database.get(), rows);
  }
  state.counters["matches"] = static_cast<double>(matches);
}

void SqliteFilled(benchmark::State& state, std::uint32_t rows) {
  const Database database = FilledDatabase(TablesOf(rows));
  for (auto _ : state) benchmark::DoNotOptimize(JoinInDatabase(database.get(), rows));
}

// Hash join and all pairs ------------------------------------------------------------------------

void HashJoin(benchmark::State& state, std::uint32_t rows) {
  const Tables& tables = TablesOf(rows);
  std::size_t matches = 0;
  for (auto _ : state) {
    std::unordered_multimap<zentavo::StringView, std::int32_t> by_document;
    by_document.reserve(rows);
    for (std::size_t j = 0; j < rows; ++j) {
      by_document.emplace(tables.right[j][0].StringValue(), static_cast<std::int32_t>(j));
    }
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i < rows; ++i) {
      const TScoreRow& left = tables.left[i];
      const auto [first, last] = by_document.equal_range(left[0].StringValue());
      for (auto found = first; found != last; ++found) {
        const TScoreRow& right = tables.right[static_cast<std::size_t>(found->second)];
        pairs.push_back({ScoreOf(left, right), static_cast<std::int32_t>(i), found->second});
      }
    }
    SortPairs(pairs);
    matches = TakeBest(pairs, rows);
  }
  state.counters["matches"] = static_cast<double>(matches);
}

void AllPairs(benchmark::State& state, std::uint32_t rows) {
  const Tables& tables = TablesOf(rows);
  for (auto _ : state) {
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i < rows; ++i) {
      for (std::size_t j = 0; j < rows; ++j) {
        const std::int32_t score = ScoreOf(tables.left[i], tables.right[j]);
        if (score >= kWeights[0]) {
          pairs.push_back({score, static_cast<std::int32_t>(i), static_cast<std::int32_t>(j)});
        }
      }
    }
    SortPairs(pairs);
    benchmark::DoNotOptimize(TakeBest(pairs, rows));
  }
}

}  // namespace

int main(int argc, char** argv) {
  const auto add = [](const std::string& name, auto function, std::uint32_t rows) {
    benchmark::RegisterBenchmark(name.c_str(), function, rows)->Unit(benchmark::kMillisecond);
  };
  for (const std::uint32_t rows : {1000U, 10000U, 100000U}) {
    const std::string name = "rows_" + std::to_string(rows) + "/";
    add(name + "zentavo", Zentavo, rows);
    add(name + "sqlite", Sqlite, rows);
    add(name + "sqlite_filled", SqliteFilled, rows);
    add(name + "hash_join", HashJoin, rows);
    if (rows <= 10000) add(name + "all_pairs", AllPairs, rows);
  }
  return bench::RunWithRatios(argc, argv);
}
