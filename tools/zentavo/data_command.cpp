#include <functional>
#include <memory>

#include "adapters/sql/sql_data_set.h"
#include "tools/zentavo/arguments.h"
#include "tools/zentavo/command.h"
#include "tools/zentavo/csv.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/format.h"
#include "zentavo/genlib/access.h"
#include "zentavo/genlib/allocation.h"
#include "zentavo/genlib/packed_text.h"

namespace zentavo::tool {

namespace {

struct DataOptions {
  std::string url;
  std::string sql;
  // allocate
  std::string amount;
  std::string weight;
  std::string target;
  std::string into;
  std::int16_t decimals = 2;
  // allocate and access
  std::string key;
  // access
  std::string table;
  std::int32_t user = 0;
  std::int32_t group = 0;
  bool mark = false;
};

using Options = std::shared_ptr<DataOptions>;

// Connects; a file that is not there is an error, not a new database.
std::unique_ptr<TSqlConnection> Connect(const std::string& url) {
  constexpr std::string_view kSqlite = "sqlite:";
  if (url.starts_with(kSqlite)) const InputFile must_exist(url.substr(kSqlite.size()));
  SetThreadFormatSettings(TFormatSettings());  // numbers are written with '.', whatever the locale
  return std::make_unique<TSqlConnection>(FromUtf8(url));
}

void Print(const std::function<void(CsvWriter&)>& write) {
  std::string text;
  CsvWriter writer([&](std::string_view block) { text += block; });
  write(writer);
  writer.Flush();
  PrintUtf8(text);
}

void Pack(const DataOptions& options) {
  const auto connection = Connect(options.url);
  TSqlDataSet data(*connection, u"data");
  data.SetSql(FromUtf8(options.sql));
  data.Open();
  PrintText(CompressDataSet(data));
}

void Unpack(const std::string& argument) {
  const String packed = FromUtf8(argument);
  Print([&](CsvWriter& writer) {
    std::int32_t position = 1;
    std::vector<String> values;
    while (ExtractRecord(packed, position, values)) {
      for (const String& value : values) writer.Field(ToUtf8(value));
      writer.EndRecord();
    }
  });
}

// The word behind the first FROM that no parenthesis and no quote encloses.
String TableOf(const String& sql) {
  int depth = 0;
  char16_t quote = 0;
  bool behind_from = false;
  String word;
  for (std::size_t at = 0; at <= sql.size(); ++at) {
    const char16_t unit = at < sql.size() ? sql[at] : u' ';
    const bool in_quotes = quote != 0;
    if (in_quotes && unit == quote) quote = 0;
    if (!in_quotes && (unit == u'"' || unit == u'\'')) quote = unit;
    const bool ends_word = !in_quotes && (unit <= u' ' || unit == u',' || unit == u';' ||
                                          unit == u'(' || unit == u')');
    if (!ends_word) {
      if (depth == 0) word += unit;
      continue;
    }
    if (behind_from && !word.empty()) return word;
    if (SameText(word, u"FROM")) behind_from = true;
    word.clear();
    if (unit == u'(') ++depth;
    if (unit == u')') --depth;
  }
  throw UsageError(u"there is no table behind FROM in '" + Excerpt(sql) + u"'");
}

void Allocate(const DataOptions& options) {
  const double amount = ReadNumberArgument(options.amount);
  const String target_sql = FromUtf8(options.target);
  const String table = TableOf(target_sql);
  const auto connection = Connect(options.url);
  TSqlDataSet source(*connection, u"source");
  source.SetSql(FromUtf8(options.sql));
  source.Open();
  TSqlDataSet target(*connection, u"target");
  target.SetSql(target_sql);
  target.SetUpdateTable(table, FromUtf8(options.key));
  target.Open();
  ZentavoEpimerismos(source, source.FieldByName(FromUtf8(options.weight)), target,
                     target.FieldByName(FromUtf8(options.into)), amount, options.decimals);
  target.ApplyUpdates();
}

void PrintTable(TDataSet& data) {
  Print([&](CsvWriter& writer) {
    for (std::int32_t i = 0; i < data.FieldCount(); ++i) {
      writer.Field(ToUtf8(data.Fields(i).Name()));
    }
    writer.EndRecord();
    for (data.First(); !data.Eof(); data.Next()) {
      for (std::int32_t i = 0; i < data.FieldCount(); ++i) {
        writer.Field(ToUtf8(data.Fields(i).AsString()));
      }
      writer.EndRecord();
    }
  });
}

void Access(const DataOptions& options) {
  const auto connection = Connect(options.url);
  const String table = FromUtf8(options.table);
  const String key = FromUtf8(options.key);
  TSqlDataSet data(*connection, table);
  data.SetSql(u"SELECT * FROM " + table + u" ORDER BY " + key);
  data.SetUpdateTable(table, key);
  data.Open();
  if (options.mark) {
    data.FieldByName(u"ISACTIVE");  // without it, marking would delete
    InactiveUserAccess(options.user, options.group, data);
    data.ApplyUpdates();
  }
  FilterUserAccess(options.user, options.group, data);
  PrintTable(data);
}

// A subcommand on a database.
CLI::App& AddOnDatabase(CLI::App& parent, const Options& options, const std::string& name,
                        const std::string& help) {
  CLI::App& command = *parent.add_subcommand(name, help);
  command.add_option("--db", options->url, "sqlite:FILE or postgresql://...")->required();
  return command;
}

void AddPack(CLI::App& parent, const Options& options) {
  CLI::App& pack = AddOnDatabase(parent, options, "pack", "Pack a query's records into one text");
  pack.add_option("SQL", options->sql, "The query")->required();
  pack.callback([options] { Pack(*options); });

  CLI::App& unpack = *parent.add_subcommand("unpack", "Print packed records as CSV");
  unpack.add_option("TEXT", options->sql, "The packed text")->required();
  unpack.callback([options] { Unpack(options->sql); });
}

void AddAllocate(CLI::App& parent, const Options& options) {
  CLI::App& command = AddOnDatabase(parent, options, "allocate", "Allocate an amount over records");
  command.add_option("--amount", options->amount, "The amount")->required();
  command.add_option("--source", options->sql, "The query of the weights")->required();
  command.add_option("--weight", options->weight, "Their column")->required();
  command.add_option("--target", options->target, "The query of the records")->required();
  command.add_option("--into", options->into, "The column that shares are added to")->required();
  command.add_option("--key", options->key, "The column that tells the records apart")->required();
  command.add_option("--decimals", options->decimals, "Decimals of the shares (2)");
  command.callback([options] { Allocate(*options); });
}

void AddAccess(CLI::App& parent, const Options& options) {
  CLI::App& command =
      AddOnDatabase(parent, options, "access", "Print the records that a user may see as CSV");
  command.add_option("--table", options->table, "The table; its column TABLEACCESS decides")
      ->required();
  command.add_option("--key", options->key, "The column that tells the records apart")->required();
  command.add_option("--user", options->user, "The user's number")->required();
  command.add_option("--group", options->group, "The number of the user's group")->required();
  command.add_flag("--mark", options->mark, "Set ISACTIVE to 0 in the others");
  command.callback([options] { Access(*options); });
}

}  // namespace

void AddDataCommand(CLI::App& program) {
  auto options = std::make_shared<DataOptions>();
  CLI::App& command = *program.add_subcommand("data", "Pack, allocate and filter records");
  command.require_subcommand(1);
  AddPack(command, options);
  AddAllocate(command, options);
  AddAccess(command, options);
}

}  // namespace zentavo::tool
