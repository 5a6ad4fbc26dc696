// Membership lists, packed data sets, allocation, tables in memory and rows of a database, beside
// the plain loops that a user would write instead.
#include <fmt/format.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <QStringList>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "adapters/sql/sql_data_set.h"
#include "ratios.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/memory_data_set.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/allocation.h"
#include "zentavo/genlib/packed_text.h"
#include "zentavo/genlib/sql_text.h"
#include "zentavo/genlib/stock_formats.h"

namespace {

using namespace zentavo;

constexpr std::size_t kValues = 100'000;
constexpr std::size_t kWeights = 1'000'000;
constexpr int kRecords = 100'000;
constexpr int kTableRecords = 1'000'000;

// Lists -----------------------------------------------------------------------------------------

const std::vector<std::int32_t>& Values() {
  static const auto values = [] {
    std::mt19937 random(1);
    std::vector<std::int32_t> made(kValues);
    for (auto& value : made) value = static_cast<std::int32_t>(random() % 10'000'000);
    return made;
  }();
  return values;
}

void ListZentavo(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(MakeInQuery(u"ITEM_ID", Values()).data());
}

void ListToChars(benchmark::State& state) {
  for (auto _ : state) {
    std::u16string text(kValues * 12, u' ');
    char16_t* at = text.data();
    for (const std::int32_t value : Values()) {
      char digits[12];
      const char* const end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
      at = std::copy(static_cast<const char*>(digits), end, at);
      *at++ = u',';
    }
    text.resize(static_cast<std::size_t>(at - text.data()));
    benchmark::DoNotOptimize(text.data());
  }
}

void ListFmt(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(fmt::format("({})", fmt::join(Values(), ",")));
}

void ListQt(benchmark::State& state) {
  for (auto _ : state) {
    QStringList list;
    for (const std::int32_t value : Values()) list << QString::number(value);
    benchmark::DoNotOptimize(list.join(QLatin1Char(',')).data());
  }
}

// Records ---------------------------------------------------------------------------------------

struct Record {
  std::int32_t id;
  std::u16string code;
  std::u16string name;
  double price;
  double quantity;
  TDateTime date;
};

Record MakeRecord(int number) {
  return {number,        u"MTRL-" + IntToStr(number),      u"Λάδι ελιάς " + IntToStr(number % 100),
          number * 0.01, static_cast<double>(number % 50), 45000.0 + number % 1000};
}

class Table {
 public:
  explicit Table(int records) {
    data.Open();
    for (int i = 0; i < records; ++i) Add(MakeRecord(i));
  }
  void Add(const Record& record) {
    data.Append();
    id.SetAsInteger(record.id);
    code.SetAsString(record.code);
    name.SetAsString(record.name);
    price.SetAsFloat(record.price);
    quantity.SetAsFloat(record.quantity);
    date.SetAsDateTime(record.date);
    data.Post();
  }
  TMemoryDataSet data{u"T"};
  TField& id = data.AddField(u"ID", TFieldType::ftInteger);
  TField& code = data.AddField(u"CODE", TFieldType::ftString);
  TField& name = data.AddField(u"NAME", TFieldType::ftString);
  TField& price = data.AddField(u"PRICE", TFieldType::ftFloat);
  TField& quantity = data.AddField(u"QTY", TFieldType::ftFloat);
  TField& date = data.AddField(u"DATE", TFieldType::ftDateTime);
};

void PackZentavo(benchmark::State& state) {
  Table table(kRecords);
  for (auto _ : state) benchmark::DoNotOptimize(CompressDataSet(table.data).data());
}

void PackStructs(benchmark::State& state) {
  std::vector<Record> records;
  for (int i = 0; i < kRecords; ++i) records.push_back(MakeRecord(i));
  for (auto _ : state) {
    std::u16string text;
    for (const Record& record : records) {
      AppendInt(text, record.id);
      text += u'|';
      (text += record.code) += u'|';
      (text += record.name) += u'|';
      AppendFloat(text, record.price);
      text += u'|';
      AppendFloat(text, record.quantity);
      text += u'|';
      text += DateToStr(record.date, StockFormatSettings(2));
      text += u"|~";
    }
    benchmark::DoNotOptimize(text.data());
  }
}

void PackFields(benchmark::State& state) {
  Table table(kRecords);
  for (auto _ : state) {
    std::u16string text;
    for (table.data.First(); !table.data.Eof(); table.data.Next()) {
      for (const TField* field :
           {&table.id, &table.code, &table.name, &table.price, &table.quantity}) {
        field->AppendText(text);
        text += u'|';
      }
      text += DateToStr(table.date.AsDateTime(), StockFormatSettings(2));
      text += u"|~";
    }
    benchmark::DoNotOptimize(text.data());
  }
}

void LoadZentavo(benchmark::State& state) {
  for (auto _ : state) {
    Table table(kTableRecords);
    benchmark::DoNotOptimize(table.data.RecordCount());
  }
}

void LoadStructs(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<Record> records;
    for (int i = 0; i < kTableRecords; ++i) records.push_back(MakeRecord(i));
    benchmark::DoNotOptimize(records.data());
  }
}

void WalkZentavo(benchmark::State& state) {
  Table table(kTableRecords);
  for (auto _ : state) {
    double sum = 0;
    for (table.data.First(); !table.data.Eof(); table.data.Next()) sum += table.price.AsFloat();
    benchmark::DoNotOptimize(sum);
  }
}

void WalkStructs(benchmark::State& state) {
  std::vector<Record> records;
  for (int i = 0; i < kTableRecords; ++i) records.push_back(MakeRecord(i));
  for (auto _ : state) {
    double sum = 0;
    for (const Record& record : records) sum += record.price;
    benchmark::DoNotOptimize(sum);
  }
}

// Deletes from the middle of a table and puts a record back there.
void DeleteMiddle(benchmark::State& state, int records) {
  Table table(records);
  for (auto _ : state) {
    table.data.SetRecNo(records / 2);
    table.data.Delete();
    table.data.Insert();
    table.data.Post();
  }
}

// Allocation ------------------------------------------------------------------------------------

const std::vector<double>& Weights() {
  static const auto weights = [] {
    std::mt19937 random(2);
    std::vector<double> made(kWeights);
    for (double& weight : made) weight = static_cast<double>(random() % 10000 + 1) / 100;
    return made;
  }();
  return weights;
}

void AllocateZentavo(benchmark::State& state) {
  std::vector<double> shares(kWeights);
  for (auto _ : state) {
    ZentavoEpimerismos(Weights(), shares, 1e9, 2);
    benchmark::DoNotOptimize(shares.data());
  }
}

void AllocateLoop(benchmark::State& state) {
  std::vector<double> shares(kWeights);
  for (auto _ : state) {
    double sum = 0;
    for (const double weight : Weights()) sum += weight;
    double total = 0;
    for (std::size_t i = 0; i < kWeights; ++i) {
      shares[i] = std::round(Weights()[i] / sum * 1e9 * 100) / 100;
      total += shares[i];
    }
    benchmark::DoNotOptimize(total);
    benchmark::DoNotOptimize(shares.data());
  }
}

// Database --------------------------------------------------------------------------------------

constexpr const char* kQuery = "SELECT id, code, name, price, qty, note FROM item";

const std::string& DatabaseFile() {
  static const std::string file = [] {
    std::string name = (std::filesystem::temp_directory_path() / "zentavo_bench.db").string();
    std::remove(name.c_str());
    soci::session session(soci::sqlite3, name);
    session << "CREATE TABLE item (id INTEGER PRIMARY KEY, code TEXT, name TEXT, price REAL, "
               "qty REAL, note TEXT)";
    soci::transaction transaction(session);
    int id = 0;
    std::string code;
    std::string label;
    double price = 0;
    soci::statement insert = (session.prepare << "INSERT INTO item VALUES (:a, :b, :c, :d, 5.5, "
                                                 "NULL)",
                              soci::use(id), soci::use(code), soci::use(label), soci::use(price));
    for (; id < kRecords; ++id) {
      const Record record = MakeRecord(id);
      code = ToUtf8(record.code);
      label = ToUtf8(record.name);
      price = record.price;
      insert.execute(true);
    }
    transaction.commit();
    return name;
  }();
  return file;
}

void ReadZentavo(benchmark::State& state) {
  TSqlConnection connection(u"sqlite:" + FromUtf8(DatabaseFile()));
  for (auto _ : state) {
    TSqlDataSet data(connection, u"ITEM");
    data.SetSql(FromUtf8(kQuery));
    data.Open();
    benchmark::DoNotOptimize(data.RecordCount());
  }
}

void ReadSoci(benchmark::State& state) {
  struct Row {
    int id = 0;
    std::string code;
    std::string name;
    double price = 0;
    double quantity = 0;
    std::string note;
  };
  soci::session session(soci::sqlite3, DatabaseFile());
  for (auto _ : state) {
    std::vector<Row> rows;
    Row row;
    soci::indicator note = soci::i_null;
    soci::statement query =
        (session.prepare << kQuery, soci::into(row.id), soci::into(row.code), soci::into(row.name),
         soci::into(row.price), soci::into(row.quantity), soci::into(row.note, note));
    query.execute();
    while (query.fetch()) rows.push_back(row);
    benchmark::DoNotOptimize(rows.data());
  }
}

void Add(const char* name, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  Add("list of 100,000/zentavo", ListZentavo);
  Add("list of 100,000/to_chars", ListToChars);
  Add("list of 100,000/fmt", ListFmt);
  Add("list of 100,000/Qt", ListQt);
  Add("pack 100,000 records/zentavo", PackZentavo);
  Add("pack 100,000 records/append", PackStructs);
  Add("pack 100,000 records/append fields", PackFields);
  Add("allocate over 1,000,000/zentavo", AllocateZentavo);
  Add("allocate over 1,000,000/round", AllocateLoop);
  Add("load 1,000,000 records/zentavo", LoadZentavo);
  Add("load 1,000,000 records/vector", LoadStructs);
  Add("walk 1,000,000 records/zentavo", WalkZentavo);
  Add("walk 1,000,000 records/vector", WalkStructs);
  Add("read 100,000 rows/zentavo", ReadZentavo);
  Add("read 100,000 rows/SOCI", ReadSoci);
  for (const int records : {10'000, 1'000'000}) {
    benchmark::RegisterBenchmark(("delete in the middle of " + std::to_string(records)).c_str(),
                                 [records](benchmark::State& s) { DeleteMiddle(s, records); });
  }
  return bench::RunWithRatios(argc, argv);
}
