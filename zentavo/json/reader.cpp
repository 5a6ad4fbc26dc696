#include "zentavo/json/reader.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/json/bare_value.h"
#include "zentavo/json/container.h"
#include "zentavo/json/plain_value.h"
#include "zentavo/json/short_key.h"
#include "zentavo/json/tokener.h"
#include "zentavo/json/writer.h"

namespace zentavo::json_internal {

namespace {

// A container may be a key, by its text form, and each level of keys in keys doubles that text at
// least: deeper ones would take memory out of all proportion to the text.
constexpr std::int32_t kMaxKeyDepth = 4;

// What the first chunk of a document holds for each unit of its text.
constexpr std::size_t kBytesForUnit = 8;

constexpr auto kLookAhead = static_cast<std::ptrdiff_t>(kMostOfShortKey);

String ToText(StringView text) {
  return String(text);
}
String ToText(std::string_view text) {
  return FromUtf8(text);
}

}  // namespace

template <typename Unit>
Reader<Unit>::Reader(const Source<Unit>& source, std::int32_t max_depth)
    : source_(source),
      document_(std::make_shared<Arena>(source.Text().size() * kBytesForUnit)),
      arena_(*document_),
      last_stop_(source.LastStop()),
      max_depth_(max_depth) {
  constexpr std::size_t kMostUnits = std::numeric_limits<std::uint32_t>::max();
  if (source.Text().size() > kMostUnits) throw ERangeError(u"Range check error");
}

template <typename Unit>
Reader<Unit>::~Reader() = default;

template <typename Unit>
std::unique_ptr<TZAbstractObject> Reader<Unit>::ReadValue(const Unit*& here) {
  return Follow({source_.SkipMark(here), Step::kValue}, here);
}

template <typename Unit>
std::unique_ptr<TZAbstractObject> Reader<Unit>::ReadContainer(const Unit*& here, JSONKind kind) {
  const bool is_object = kind == JSONKind::kObject;
  const Unit* first = source_.Clean(source_.SkipMark(here));
  if (first == source_.End() || *first != static_cast<Unit>(is_object ? u'{' : u'[')) {
    throw source_.ErrorAt(
        is_object ? u"JSON Object must begin with \"{\"" : u"JSON Array must start with \"[\"",
        first);
  }
  return Follow(Open(first, is_object, false), here);
}

template <typename Unit>
String Reader<Unit>::ReadString(const Unit*& here, Unit quote) {
  Slot slot;
  here = TakeText(here, quote, &slot);
  return String(slot.Text());
}

template <typename Unit>
std::unique_ptr<TZAbstractObject> Reader<Unit>::Follow(State state, const Unit*& here) {
  while (state.step != Step::kDone) {
    switch (state.step) {
      case Step::kMember: state = TakeMember(state.here); break;
      case Step::kElement: state = TakeElement(state.here); break;
      case Step::kBehindKey: state = BehindKey(state.here); break;
      case Step::kBehindValue: state = BehindValue(state.here); break;
      default: state = TakeValue(state.here);
    }
  }
  here = state.here;
  return TakeResult();
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::TakeMember(const Unit* here) {
  here = source_.Clean(here);
  if (here == source_.End()) throw source_.ErrorAt(u"JSON Object must end with \"}\"", here);
  switch (*here) {
    case '}': return Close(here + 1);
    case '"':
    case '\'': here = TakeKey(here + 1, *here); break;
    case '{': return Open(here, true, true);
    case '[': return Open(here, false, true);
    default: here = TakeBare(here, slots_.New()); MakeKey(slots_.Last());
  }
  return BehindKey(here);
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::TakeElement(const Unit* here) {
  here = source_.Clean(here);
  if (here == source_.End()) return TakeValue(here);
  if (*here == ']') return Close(here + 1);
  if (*here != ',') return TakeValueAt(here);
  slots_.Add(Slot::Of(SlotKind::kMissing));
  return BehindValue(here);
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::BehindKey(const Unit* here) {
  here = source_.Clean(here);
  if (here == source_.End() || (*here != ':' && *here != '=')) {
    throw source_.ErrorAt(u"Expected a \":\" after a key", here);
  }
  const bool may_be_arrow = *here++ == '=';
  if (may_be_arrow && here != source_.End() && *here == '>') ++here;
  return TakeValue(here);
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::TakeValue(const Unit* here) {
  here = source_.Clean(here);
  if (here == source_.End()) throw source_.ErrorAt(u"Missing value.", here);
  return TakeValueAt(here);
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::TakeValueAt(const Unit* here) {
  switch (*here) {
    case '"':
    case '\'': here = TakeText(here + 1, *here, slots_.New()); break;
    case '{': return Open(here, true, false);
    case '[': return Open(here, false, false);
    default: here = TakeBare(here, slots_.New());
  }
  return BehindValue(here);
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::BehindValue(const Unit* here) {
  if (next_ == Step::kDone) return {here, Step::kDone};
  here = source_.Clean(here);
  if (here != source_.End()) {
    if (*here == ',' || *here == ';') return {here + 1, next_};
    if (*here == static_cast<Unit>(closer_)) return Close(here + 1);
  }
  throw source_.ErrorAt(
      closer_ == '}' ? u"Expected a \",\" or \"}\"" : u"Expected a \",\" or \"]\"", here);
}

// Sets what depends on the innermost container.
template <typename Unit>
inline void Reader<Unit>::SetAround() {
  const bool none = frames_.Empty();
  const bool is_object = !none && frames_.Last().is_object;
  closer_ = is_object ? '}' : ']';
  next_ = none ? Step::kDone : is_object ? Step::kMember : Step::kElement;
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::Open(const Unit* here, bool is_object,
                                                       bool is_key) {
  if (std::cmp_greater_equal(frames_.Size(), max_depth_) ||
      (is_key && ++key_depth_ > kMaxKeyDepth)) {
    throw source_.ErrorAt(u"Nesting too deep", here);
  }
  if (ended_.Size() == frames_.Size()) ended_.Add({nullptr, 0});
  *frames_.New() = {slots_.Size(), is_object, is_key};
  SetAround();
  return {here + 1, next_};
}

template <typename Unit>
inline typename Reader<Unit>::State Reader<Unit>::Close(const Unit* here) {
  const Frame frame = frames_.Last();
  frames_.RemoveLast();
  const std::size_t count = slots_.Size() - frame.first_cell;
  Slot* cells = TakeCells(frame.first_cell, count);
  const SlotKind kind = frame.is_object ? SlotKind::kObject : SlotKind::kArray;
  if (frame.is_object) *ended_.From(frames_.Size()) = {cells, count};
  slots_.Add(Slot::OfCells(kind, cells, frame.is_object ? count / 2 : count));
  SetAround();
  if (frame.is_key) return CloseKey(here);
  return {here, Step::kBehindValue};
}

// Moves the cells on top of the stack to the document; many cells of the outermost container stay
// where they are, and the document gets the stack.
template <typename Unit>
inline Slot* Reader<Unit>::TakeCells(std::size_t first, std::size_t count) {
  constexpr std::size_t kLarge = 4096;
  Slot* from = slots_.From(first);
  if (frames_.Empty() && count >= kLarge) {
    auto all = slots_.Release();
    Slot* cells = all.get();
    arena_.Keep(std::move(all));
    return cells;
  }
  Slot* cells = arena_.TakeCells(count);
  for (std::size_t index = 0; index < count; ++index) cells[index] = from[index];
  slots_.CutTo(first);
  return cells;
}

template <typename Unit>
typename Reader<Unit>::State Reader<Unit>::CloseKey(const Unit* here) {
  --key_depth_;
  MakeKey(slots_.Last());
  return {here, Step::kBehindKey};
}

// Makes a value that was read the key that its text form is.
template <typename Unit>
void Reader<Unit>::MakeKey(Slot& slot) {
  if (slot.kind == SlotKind::kText) return;
  String key;
  AppendValue(key, slot);
  slot = Slot::OfText(arena_.AddText(key));
}

// The rest of a key in quotes.
template <typename Unit>
inline const Unit* Reader<Unit>::TakeKey(const Unit* here, Unit quote) {
  const Ended& ended = *ended_.From(frames_.Size() - 1);
  const std::size_t cell = slots_.Size() - frames_.Last().first_cell;
  Slot* slot = slots_.New();
  if (cell < ended.count && source_.End() - here > kLookAhead) {
    const Slot& same = ended.cells[cell];
    if (same.kind == SlotKind::kShortKey && BeginsWithShortKey(here, same.Text()) &&
        here[same.size] == quote) {
      *slot = same;
      return here + same.size + 1;
    }
  }
  here = TakeText(here, quote, slot);
  if (IsShortKey(slot->Text())) slot->kind = SlotKind::kShortKey;
  return here;
}

template <typename Unit>
inline const Unit* Reader<Unit>::TakeText(const Unit* here, Unit quote, Slot* slot) {
  char16_t* start = arena_.Units();
  const Copied<Unit> copied =
      CopyPlain(here, source_.End(), static_cast<char16_t>(quote), start, arena_.UnitsEnd());
  if (copied.from == source_.End() || *copied.from != quote) {
    return TakeHardText(copied, quote, slot);
  }
  arena_.EndText(copied.to);
  *slot = Slot::OfText({start, static_cast<std::size_t>(copied.to - start)});
  return copied.from + 1;
}

// Goes on with a text that does not end where copying ended first.
template <typename Unit>
const Unit* Reader<Unit>::TakeHardText(Copied<Unit> copied, Unit quote, Slot* slot) {
  auto& [here, out] = copied;
  while (here == source_.End() || *here != quote) {
    if (here == source_.End()) throw source_.ErrorAt(u"Unterminated string", here);
    if (*here == '\n' || *here == '\r') throw source_.ErrorAt(u"Unterminated string", here);
    if (*here == '\\') {
      if (++here == source_.End()) throw source_.ErrorAt(u"Unterminated string", here);
      if (Source<Unit>::StandsForItself(*here)) {
        const char16_t unit = source_.TakeEscape(here);
        out = AddUnits(out, StringView(&unit, 1), here);
      }
    }
    const Unit* run = here;
    while (here != source_.End() && !Source<Unit>::StandsForItself(*here)) ++here;
    if (here != run) out = AddUnits(out, ToText(Source<Unit>::Between(run, here)), here);
    if (out == arena_.UnitsEnd()) out = MoveText(out, 0, here);
    copied = CopyPlain(here, source_.End(), static_cast<char16_t>(quote), out, arena_.UnitsEnd());
  }
  *slot = Slot::OfText({arena_.Units(), static_cast<std::size_t>(out - arena_.Units())});
  arena_.EndText(out);
  return here + 1;
}

template <typename Unit>
char16_t* Reader<Unit>::AddUnits(char16_t* out, StringView units, const Unit* here) {
  if (units.size() > static_cast<std::size_t>(arena_.UnitsEnd() - out)) {
    out = MoveText(out, units.size(), here);
  }
  return std::copy(units.begin(), units.end(), out);
}

// Moves the text that is being read to where `need` more units have room.
template <typename Unit>
char16_t* Reader<Unit>::MoveText(char16_t* out, std::size_t need, const Unit* here) {
  const auto most = static_cast<std::size_t>(source_.End() - here);
  return arena_.MoveText(static_cast<std::size_t>(out - arena_.Units()), need, need + most);
}

template <typename Unit>
inline const Unit* Reader<Unit>::TakeBare(const Unit* here, Slot* slot) {
  const Unit* behind = here < last_stop_ ? ReadPlainValue(here, slot) : nullptr;
  return behind != nullptr ? behind : TakeBareText(here, slot);
}

template <typename Unit>
const Unit* Reader<Unit>::TakeBareText(const Unit* here, Slot* slot) {
  const Unit* end = source_.BareEnd(here);
  const String text = ToText(Source<Unit>::Between(here, end));
  const StringView bare = TrimView(text);
  if (bare.empty()) throw source_.ErrorBefore(u"Missing value.", end);
  *slot = ReadBareValue(bare);
  if (slot->kind == SlotKind::kText) *slot = Slot::OfText(arena_.AddText(bare));
  return end;
}

template <typename Unit>
std::unique_ptr<TZAbstractObject> Reader<Unit>::TakeResult() {
  const Slot slot = slots_.Last();
  switch (slot.kind) {
    case SlotKind::kObject:
    case SlotKind::kArray: return MakeContainer(slot, std::move(document_));
    case SlotKind::kNull: return std::make_unique<JNULL>();
    case SlotKind::kInteger: return std::make_unique<_Integer>(slot.integer);
    case SlotKind::kDouble: return std::make_unique<_Double>(slot.number);
    case SlotKind::kDecimal: return std::make_unique<_Double>(slot.DecimalValue());
    case SlotKind::kText: return std::make_unique<_String>(String(slot.Text()));
    default: return std::make_unique<_Boolean>(slot.kind == SlotKind::kTrue);
  }
}

template <typename Unit>
std::unique_ptr<TZAbstractObject> ReadWhole(std::basic_string_view<Unit> text) {
  const Source<Unit> source(text);
  const Unit* here = source.Begin();
  auto value = Reader<Unit>(source, kMaxJSONDepth).ReadValue(here);
  here = source.Clean(here);
  if (here != source.End()) throw source.ErrorAt(u"Unexpected text after the value", here);
  return value;
}

template <typename Unit>
std::unique_ptr<TZAbstractObject> ReadFirst(std::basic_string_view<Unit> text, JSONKind kind) {
  const Source<Unit> source(text);
  const Unit* here = source.Begin();
  return Reader<Unit>(source, kMaxJSONDepth).ReadContainer(here, kind);
}

template class Reader<char16_t>;
template class Reader<char>;
template std::unique_ptr<TZAbstractObject> ReadFirst(std::u16string_view, JSONKind);
template std::unique_ptr<TZAbstractObject> ReadFirst(std::string_view, JSONKind);
template std::unique_ptr<TZAbstractObject> ReadWhole(std::u16string_view);
template std::unique_ptr<TZAbstractObject> ReadWhole(std::string_view);

}  // namespace zentavo::json_internal
