#include "zentavo/formula/builtin_table.h"

#include "zentavo/formula/identifiers.h"

namespace zentavo {

namespace {

struct Builtin {
  const char16_t* name;
  std::int32_t id;
  TResultTypes type;
  TTokenTypes token = tokSysFunction;
};

constexpr Builtin kBuiltins[] = {
    {u"and", 0, resNumber, tokAnd},
    {u"or", 0, resNumber, tokOr},
    {u"AndNot", 0, resNumber, tokAndNot},
    {u"Xor", 0, resNumber, tokXor},
    {u"plus", 0, resUndefined, tokAdd},
    {u"max", kMaxId, resNumber},
    {u"Date", 11, resDate},
    {u"String", 5, resString},
    {u"FString", 34, resString},
    {u"NZString", 20, resString},
    {u"Number", 2, resNumber},
    {u"Integer", 1, resNumber},
    {u"Mask", 17, resNumber},
    {u"Include", 18, resNumber},
    {u"Copy", 13, resString},
    {u"Case", 14, resString},
    {u"Pos", 3, resInteger},
    {u"CurTime", kCurTimeId, resString, tokSysVariable},
    {u"IF", kIfId, resUndefined},
    {u"Len", 9, resNumber},
    {u"Spell", 19, resString},
    {u"Trunc", 7, resNumber},
    {u"TruncUp", 29, resNumber},
    {u"Round", 4, resNumber},
    {u"ARound", 28, resNumber},
    {u"DateToStr", 10, resString},
    {u"Caseof", 15, resString},
    {u"Min", kMinId, resNumber},
    {u"InList", 21, resUndefined},
    {u"InStrList", 22, resUndefined},
    {u"Percent", 23, resNumber},
    {u"DPercent", 24, resNumber},
    {u"Margin", 25, resNumber},
    {u"IsEmpty", 26, resNumber},
    {u"Format", 27, resString},
    {u"LTrim", 30, resString},
    {u"RTrim", 31, resString},
    {u"Replace", 32, resString},
    {u"Char", 33, resString},
    {u"QuoteStr", 35, resString},
    {u"Abs", 36, resNumber},
};

std::unique_ptr<TIdentList> BuildTable() {
  auto table = std::make_unique<TIdentList>();
  for (const Builtin& builtin : kBuiltins) {
    InsertInList(*table, builtin.name, builtin.token, builtin.id, builtin.type);
  }
  table->BuildIndex();
  return table;
}

// Constructed at the latest by the unit's start-up, and so destroyed after its shut-down.
std::unique_ptr<TIdentList>& Table() {
  static std::unique_ptr<TIdentList> table = BuildTable();
  return table;
}

}  // namespace

const TIdentList& ParserFunctions() {
  return *Table();
}

void InitializeParserFunctions() {
  if (Table() == nullptr) Table() = BuildTable();
}

void FinalizeParserFunctions() {
  FreeList(Table());
}

}  // namespace zentavo
