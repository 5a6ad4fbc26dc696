// Business formulas, read from a file and worked through for every item of a list.
#include <chrono>
#include <iostream>
#include <memory>
#include <vector>

#include "examples/demo/goods.h"
#include "examples/demo/parts.h"
#include "examples/demo/text_table.h"
#include "zentavo/formula/parser.h"
#include "zentavo/foundation/helper_files.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/string_list.h"

namespace demo {

namespace {

using zentavo::String;
using zentavo::StringView;
using zentavo::TResult;

constexpr int kItems = 500;
constexpr std::size_t kShownRows = 12;  // at the head, and as many at the tail

// A name that formulas know: a field of the item, or the value of an earlier formula.
struct Variable {
  String name;
  TResult value;
};
using Variables = std::vector<std::unique_ptr<Variable>>;

// One NAME=FORMULA. Sees the variables that were there before it.
class Rule : public zentavo::TXParser {
 public:
  Rule(const Variables& variables, Variable& target, StringView formula)
      : variables_(variables), target_(target) {
    for (std::size_t i = 0; &*variables[i] != &target; ++i) {
      DefineUserVariable(variables[i]->name, static_cast<std::int32_t>(i), zentavo::resUndefined);
    }
    SetFormula(formula);
  }

  void EvaluateUserVariable(std::int32_t id, TResult& result) override {
    result = variables_[static_cast<std::size_t>(id)]->value;
  }

  // Sets the target; leaves it undefined, and returns the message, when the formula fails.
  String Apply() {
    target_.value = {};
    try {
      Execute();
    } catch (const zentavo::Exception& error) {
      return target_.name + u": " + error.Message();
    }
    target_.value = CResult;
    return {};
  }

 private:
  const Variables& variables_;
  Variable& target_;
};

TResult Number(double value) {
  TResult result;
  result.ResultType = zentavo::resNumber;
  result.ResultNum = value;
  return result;
}

TResult Text(const String& value) {
  TResult result;
  result.ResultType = zentavo::resString;
  result.ResultStr = value;
  return result;
}

class PriceList {
 public:
  // Reads the formulas: a NAME=FORMULA a line, '#' begins a comment.
  explicit PriceList(StringView file_name) {
    for (const char16_t* name :
         {u"Code", u"Name", u"UnitPrice", u"Cost", u"Qty", u"Disc", u"VatClass", u"PriceDate"}) {
      AddVariable(name);
    }
    zentavo::TStringList lines;
    lines.SetText(zentavo::FromUtf8(zentavo::ReadAllTextAnsi(file_name)));
    for (std::int32_t i = 0; i < lines.Count(); ++i) AddRule(zentavo::TrimView(lines.Strings(i)));
  }

  std::size_t RuleCount() const { return rules_.size(); }

  void Price(const Item& item) {
    Set(0, Text(item.code));
    Set(1, Text(item.name));
    Set(2, Number(item.unit_price));
    Set(3, Number(item.cost));
    Set(4, Number(item.quantity));
    Set(5, Text(item.discount));
    Set(6, Number(item.vat_class));
    Set(7, Text(item.price_date));
    for (const auto& rule : rules_) Note(rule->Apply());
  }

  // The value of the item priced last; undefined for an unknown name.
  TResult Value(StringView name) const {
    for (const auto& variable : variables_) {
      if (zentavo::SameText(variable->name, name)) return variable->value;
    }
    return {};
  }

  const String& FirstFault() const { return first_fault_; }

 private:
  Variable& AddVariable(StringView name) {
    variables_.push_back(std::make_unique<Variable>(Variable{String(name), {}}));
    return *variables_.back();
  }

  void AddRule(StringView line) {
    const std::size_t equals = line.find(u'=');
    if (line.starts_with(u'#') || equals == line.npos) return;
    Variable& target = AddVariable(zentavo::TrimView(line.substr(0, equals)));
    rules_.push_back(std::make_unique<Rule>(variables_, target, line.substr(equals + 1)));
  }

  void Set(std::size_t place, const TResult& value) { variables_[place]->value = value; }

  void Note(const String& fault) {
    if (first_fault_.empty()) first_fault_ = fault;
  }

  Variables variables_;
  std::vector<std::unique_ptr<Rule>> rules_;
  String first_fault_;
};

constexpr int kNoNumber = -1;

struct ShownColumn {
  const char16_t* title;
  const char16_t* variable;
  int decimals;
};
constexpr ShownColumn kShown[] = {
    {u"Code", u"Code", kNoNumber},
    {u"Name", u"Name", kNoNumber},
    {u"Price", u"UnitPrice", 2},
    {u"Qty", u"Qty", 0},
    {u"Disc %", u"LineDisc", 0},
    {u"Net", u"Net", 2},
    {u"VAT %", u"VatRate", 0},
    {u"VAT", u"Vat", 2},
    {u"Gross", u"Gross", 2},
    {u"Margin %", u"MarginPct", 1},
    {u"Shelf", u"SeasonPrice", 2},
    {u"Valid until", u"ValidUntil", kNoNumber},
    {u"Warning", u"Warning", kNoNumber},
};

String Amount(double value, int decimals) {
  return zentavo::FloatToFixed(value, decimals, zentavo::Grouping::kThousands, u'.', u',');
}

String Cell(const TResult& value, int decimals) {
  switch (value.ResultType) {
    case zentavo::resUndefined: return u"?";
    case zentavo::resString: return value.ResultStr;
    case zentavo::resDate: return zentavo::DateToStr(value.ResultNum, zentavo::TFormatSettings());
    default: return Amount(value.ResultNum, decimals);
  }
}

std::vector<String> Row(const PriceList& list) {
  std::vector<String> cells;
  for (const ShownColumn& column : kShown) {
    cells.push_back(Cell(list.Value(column.variable), column.decimals));
  }
  return cells;
}

struct Totals {
  double pieces = 0, net = 0, vat = 0, gross = 0;
  int warnings = 0;

  void Add(const PriceList& list) {
    pieces += list.Value(u"Qty").ResultNum;
    net += list.Value(u"Net").ResultNum;
    vat += list.Value(u"Vat").ResultNum;
    gross += list.Value(u"Gross").ResultNum;
    warnings += list.Value(u"Warning").ResultStr.empty() ? 0 : 1;
  }

  std::vector<String> Row() const {
    return {u"Total",
            u"500 items",
            {},
            Amount(pieces, 0),
            {},
            Amount(net, 2),
            {},
            Amount(vat, 2),
            Amount(gross, 2),
            {},
            {},
            {},
            Amount(warnings, 0) + u" low"};
  }
};

TextTable EmptyTable() {
  TextTable table;
  for (const ShownColumn& column : kShown) {
    table.AddColumn(column.title, column.decimals == kNoNumber ? TextTable::Align::kLeft
                                                               : TextTable::Align::kRight);
  }
  return table;
}

// What the last item's longer texts are.
void PrintTexts(const PriceList& list) {
  for (const char16_t* name : {u"Label", u"Pieces", u"InWords", u"InWordsEN"}) {
    const String line = zentavo::Format(u"%-10s %s", {name, Cell(list.Value(name), 0)});
    std::cout << zentavo::ToUtf8(line) << "\n";
  }
}

void PrintCost(std::size_t cells, double milliseconds) {
  const String line =
      zentavo::Format(u"%s formula cells in %s ms",
                      {Amount(static_cast<double>(cells), 0), Amount(milliseconds, 1)});
  std::cout << "\n" << zentavo::ToUtf8(line) << "\n";
}

}  // namespace

void PriceTheList() {
  using Clock = std::chrono::steady_clock;
  PriceList list(zentavo::FromUtf8(ZENTAVO_EXAMPLES "/price_list.formulas"));
  const std::vector<Item> items = MakeGoods(kItems);
  TextTable table = EmptyTable();
  Totals totals;
  Clock::duration time{};
  for (std::size_t i = 0; i < items.size(); ++i) {
    const Clock::time_point start = Clock::now();
    list.Price(items[i]);
    time += Clock::now() - start;
    totals.Add(list);
    if (i == kShownRows) table.AddRow({u"…", u"…"});
    if (i < kShownRows || i >= items.size() - kShownRows) table.AddRow(Row(list));
  }
  table.AddRule();
  table.AddRow(totals.Row());
  std::cout << table.Text() << "\n";
  PrintTexts(list);
  PrintCost(list.RuleCount() * items.size(),
            std::chrono::duration<double, std::milli>(time).count());
  if (!list.FirstFault().empty()) {
    std::cout << "Some cells have no value. " << zentavo::ToUtf8(list.FirstFault()) << "\n";
  }
}

}  // namespace demo
