#include "tools/zentavo/formula_table.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <span>

#include "tools/zentavo/progress.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

using Cells = std::vector<std::string_view>;

// Reads the row's cells as variables, whose ids are the columns' places.
class RowParser : public TXParser {
 public:
  explicit RowParser(const Cells& cells) : cells_(cells) {}

  void DefineColumn(StringView title, std::size_t place) {
    const String name = ColumnVariable(title);
    if (!name.empty()) DefineUserVariable(name, static_cast<std::int32_t>(place), resUndefined);
  }

  void EvaluateUserVariable(std::int32_t place, TResult& result) override {
    const std::string_view text = cells_[static_cast<std::size_t>(place)];
    if (const std::optional<double> number = TryStrToFloat(text, '.')) {
      result.ResultType = resNumber;
      result.ResultNum = *number;
    } else {
      result.ResultType = resString;
      AppendFromUtf8(result.ResultStr, text);
    }
  }

 private:
  const Cells& cells_;
};

// A column that a formula sets.
struct SetColumn {
  String title;
  std::size_t place;
  std::unique_ptr<RowParser> parser;
  std::string text;  // of the current row's cell
};

class TableRun {
 public:
  TableRun(CsvReader& reader, CsvWriter& writer, RowFailure on_failure)
      : reader_(reader), writer_(writer), on_failure_(on_failure) {}

  void ReadHeader(const std::vector<ColumnFormula>& formulas, NamedValues& variables);
  bool ReadRow();
  void EvaluateRow();
  void WriteRow();
  TableOutcome&& TakeOutcome() { return std::move(outcome_); }

 private:
  void CheckVariables(const NamedValues& variables) const;
  void AddSetColumn(const ColumnFormula& formula, NamedValues& variables);
  void WriteHeader();
  void EvaluateCell(SetColumn& column);
  void Fail(SetColumn& column, StringView message);

  CsvReader& reader_;
  CsvWriter& writer_;
  RowFailure on_failure_;
  std::vector<String> titles_;  // of all columns
  std::size_t read_columns_ = 0;
  std::vector<SetColumn> set_columns_;
  std::vector<bool> is_set_;  // by column
  Cells cells_;
  std::string line_break_;
  TableOutcome outcome_;
};

void TableRun::ReadHeader(const std::vector<ColumnFormula>& formulas, NamedValues& variables) {
  if (!reader_.Next()) throw CsvError(1, u"No header");
  for (const std::string_view title : reader_.Fields()) titles_.push_back(FromUtf8(title));
  read_columns_ = titles_.size();
  line_break_ = reader_.LineBreak().empty() ? "\n" : reader_.LineBreak();
  for (const ColumnFormula& formula : formulas) AddSetColumn(formula, variables);
  CheckVariables(variables);
  cells_.resize(titles_.size());
  is_set_.resize(titles_.size());
  for (const SetColumn& column : set_columns_) is_set_[column.place] = true;
  WriteHeader();
}

void TableRun::CheckVariables(const NamedValues& variables) const {
  for (const String& title : titles_) {
    const String name = ColumnVariable(title);
    if (variables.Has(name)) throw Exception(u"'" + name + u"' is both a column and a variable");
  }
}

// The formula sees the columns that are there before it.
void TableRun::AddSetColumn(const ColumnFormula& formula, NamedValues& variables) {
  const String title = FromUtf8(formula.title);
  SetColumn column{title, 0, std::make_unique<RowParser>(cells_), {}};
  for (std::size_t i = 0; i < titles_.size(); ++i) column.parser->DefineColumn(titles_[i], i);
  variables.InsertInto(*column.parser);
  column.parser->SetFormula(formula.formula);
  const auto found = std::find_if(titles_.begin(), titles_.end(),
                                  [&](const String& other) { return SameText(other, title); });
  column.place = static_cast<std::size_t>(found - titles_.begin());
  if (found == titles_.end()) titles_.push_back(title);
  set_columns_.push_back(std::move(column));
}

void TableRun::WriteHeader() {
  if (reader_.HasMark()) writer_.Mark();
  for (const std::string_view title : reader_.WrittenFields()) writer_.WrittenField(title);
  for (std::size_t i = read_columns_; i < titles_.size(); ++i) writer_.Field(ToUtf8(titles_[i]));
  writer_.EndRecord(line_break_);
}

bool TableRun::ReadRow() {
  if (!reader_.Next()) return false;
  const std::span<const std::string_view> fields = reader_.Fields();
  if (fields.size() != read_columns_) {
    throw CsvError(reader_.Line(),
                   Format(u"%d fields instead of %d", {static_cast<std::int64_t>(fields.size()),
                                                       static_cast<std::int64_t>(read_columns_)}));
  }
  std::copy(fields.begin(), fields.end(), cells_.begin());
  return true;
}

void TableRun::EvaluateRow() {
  for (SetColumn& column : set_columns_) {
    column.text.clear();
    try {
      EvaluateCell(column);
    } catch (const Exception& error) {
      Fail(column, error.Message());
    }
    cells_[column.place] = column.text;
  }
}

void TableRun::EvaluateCell(SetColumn& column) {
  column.parser->Execute();
  AppendValue(column.text, column.parser->CResult);
}

void TableRun::Fail(SetColumn& column, StringView message) {
  const String text =
      u"line " + IntToStr(reader_.Line()) + u", " + Excerpt(column.title) + u": " + String(message);
  if (on_failure_ == RowFailure::kEndsRun) throw Exception(text);
  if (++outcome_.failures == 1) outcome_.first_failure = text;
  column.text.clear();
}

void TableRun::WriteRow() {
  const std::span<const std::string_view> written = reader_.WrittenFields();
  for (std::size_t i = 0; i < titles_.size(); ++i) {
    if (is_set_[i]) {
      writer_.Field(cells_[i]);
    } else {
      writer_.WrittenField(written[i]);
    }
  }
  writer_.EndRecord(line_break_);
}

}  // namespace

String ColumnVariable(StringView title) {
  String name = Trim(title);
  for (char16_t& unit : name) {
    if (!IsNameLetter(unit) && !IsDigit(unit) && unit != u'.') unit = u'_';
  }
  if (!name.empty() && !IsFreeIdentifier(name)) name.insert(0, 1, u'_');
  return name;
}

TableOutcome EvaluateTable(CsvReader& reader, CsvWriter& writer,
                           const std::vector<ColumnFormula>& formulas, NamedValues& variables,
                           RowFailure on_failure) {
  TableRun run(reader, writer, on_failure);
  run.ReadHeader(formulas, variables);
  Progress progress("rows");
  while (run.ReadRow()) {
    run.EvaluateRow();
    run.WriteRow();
    progress.Advance();
  }
  writer.Flush();
  return run.TakeOutcome();
}

}  // namespace zentavo::tool
