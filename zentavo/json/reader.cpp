#include "zentavo/json/reader.h"

#include <span>
#include <utility>

#include "zentavo/json/array.h"
#include "zentavo/json/bare_value.h"
#include "zentavo/json/object.h"
#include "zentavo/json/value_view.h"
#include "zentavo/json/writer.h"

namespace zentavo::json_internal {

namespace {

// A container may be a key, by its text form, and each level of keys in keys doubles that text at
// least: deeper ones would take memory out of all proportion to the text.
constexpr std::int32_t kMaxKeyDepth = 4;

}  // namespace

Reader::~Reader() {
  for (const Slot& slot : std::span(slots_.Items(), slots_.Size())) {
    if (slot.kind == SlotKind::kContainer) delete slot.object;
  }
}

std::unique_ptr<TZAbstractObject> Reader::ReadValue() {
  return Follow(Step::kValue);
}
std::unique_ptr<TZAbstractObject> Reader::ReadObject() {
  return ReadContainer(true, u"JSON Object must begin with \"{\"");
}
std::unique_ptr<TZAbstractObject> Reader::ReadArray() {
  return ReadContainer(false, u"JSON Array must start with \"[\"");
}

std::unique_ptr<TZAbstractObject> Reader::ReadContainer(bool is_object, StringView complaint) {
  const char16_t first = cursor_.NextClean();
  if (first == 0) throw cursor_.ErrorHere(complaint);
  if (first != (is_object ? u'{' : u'[')) throw cursor_.Error(complaint);
  return Follow(Open(is_object, false));
}

std::unique_ptr<TZAbstractObject> Reader::Follow(Step step) {
  while (step != Step::kDone) {
    switch (step) {
      case Step::kNext: step = TakeNext(); break;
      case Step::kValue: step = TakeValue(cursor_.NextClean()); break;
      case Step::kBehindKey: step = BehindKey(); break;
      default: step = BehindValue();
    }
  }
  return TakeResult();
}

Reader::Step Reader::TakeNext() {
  return frames_.Last().is_object ? TakeKey() : TakeElement();
}

Reader::Step Reader::TakeValue(char16_t first) {
  switch (first) {
    case u'"':
    case u'\'': slots_.Add(TakeText(first)); break;
    case u'{': return Open(true, false);
    case u'[': return Open(false, false);
    default:
      if (first != 0) cursor_.SetIndex(cursor_.Index() - 1);
      slots_.Add(TakeBare());
  }
  return frames_.Size() == 0 ? Step::kDone : Step::kBehindValue;
}

Reader::Step Reader::TakeKey() {
  const char16_t first = cursor_.NextClean();
  switch (first) {
    case 0: throw cursor_.ErrorHere(u"JSON Object must end with \"}\"");
    case u'}': return Close();
    case u'"':
    case u'\'': keys_.Add(TakeText(first).text); break;
    case u'{': return Open(true, true);
    case u'[': return Open(false, true);
    default: cursor_.SetIndex(cursor_.Index() - 1); AddKeyOf(TakeBare());
  }
  return BehindKey();
}

Reader::Step Reader::TakeElement() {
  const char16_t first = cursor_.NextClean();
  if (first == u']') return Close();
  if (first != u',') return TakeValue(first);
  cursor_.SetIndex(cursor_.Index() - 1);
  slots_.Add(Slot::Of(SlotKind::kMissing));
  return Step::kBehindValue;
}

Reader::Step Reader::BehindKey() {
  const char16_t separator = cursor_.NextClean();
  if (separator == 0) throw cursor_.ErrorHere(u"Expected a \":\" after a key");
  if (separator != u':' && separator != u'=') throw cursor_.Error(u"Expected a \":\" after a key");
  if (separator == u'=' && !cursor_.AtEnd() && *cursor_.Here() == u'>') {
    cursor_.SetIndex(cursor_.Index() + 1);
  }
  return TakeValue(cursor_.NextClean());
}

Reader::Step Reader::BehindValue() {
  const bool is_object = frames_.Last().is_object;
  const char16_t separator = cursor_.NextClean();
  if (separator == u',' || separator == u';') return TakeNext();
  if (separator == (is_object ? u'}' : u']')) return Close();
  const StringView complaint =
      is_object ? u"Expected a \",\" or \"}\"" : u"Expected a \",\" or \"]\"";
  throw separator == 0 ? cursor_.ErrorHere(complaint) : cursor_.Error(complaint);
}

Reader::Step Reader::Open(bool is_object, bool is_key) {
  if (std::cmp_greater_equal(frames_.Size(), max_depth_)) throw cursor_.Error(u"Nesting too deep");
  if (is_key && ++key_depth_ > kMaxKeyDepth) throw cursor_.Error(u"Nesting too deep");
  frames_.Add({is_object, is_key, static_cast<std::uint32_t>(slots_.Size()),
               static_cast<std::uint32_t>(keys_.Size()), texts_.Size()});
  first_unit_ = texts_.Size();
  return Step::kNext;
}

std::unique_ptr<TZAbstractObject> Reader::Build(const Frame& frame) {
  const std::span<const Slot> slots =
      std::span(slots_.Items(), slots_.Size()).subspan(frame.first_slot);
  Storage storage(frame.is_object, slots, keys_.Items() + frame.first_key,
                  texts_.From(frame.first_unit));
  std::unique_ptr<TJSONContainer> container;
  if (frame.is_object) {
    container = std::make_unique<TJSONObject>();
  } else {
    container = std::make_unique<TJSONArray>();
  }
  Access::Of(*container).swap(storage);
  CutTo(frame);
  return container;
}

void Reader::CutTo(const Frame& frame) {
  slots_.CutTo(frame.first_slot);
  keys_.CutTo(frame.first_key);
  texts_.CutTo(frame.first_unit);
}

Reader::Step Reader::Close() {
  const Frame frame = frames_.Last();
  std::unique_ptr<TZAbstractObject> container = Build(frame);
  frames_.CutTo(frames_.Size() - 1);
  first_unit_ = frames_.Size() == 0 ? 0 : frames_.Last().first_unit;
  if (frame.is_key) {
    --key_depth_;
    const std::size_t first_unit = texts_.Size();
    AppendValue(texts_, ViewOf(container.get()));
    keys_.Add(TextFrom(first_unit));
    return Step::kBehindKey;
  }
  slots_.Add(Slot::OfObject(SlotKind::kContainer, container.get()));
  static_cast<void>(container.release());
  return frames_.Size() == 0 ? Step::kDone : Step::kBehindValue;
}

TextRef Reader::TextFrom(std::size_t first_unit) const {
  return {static_cast<std::uint32_t>(first_unit - first_unit_),
          static_cast<std::uint32_t>(texts_.Size() - first_unit)};
}

Slot Reader::TakeText(char16_t quote) {
  const std::size_t first_unit = texts_.Size();
  cursor_.AppendString(texts_, quote);
  return Slot::OfText(TextFrom(first_unit));
}

Slot Reader::TakeBare() {
  Slot slot;
  const char16_t* behind = ReadPlainValue(cursor_.Here(), cursor_.End(), slot);
  if (behind == nullptr) return TakeBareText();
  cursor_.MoveTo(behind);
  return slot;
}

Slot Reader::TakeBareText() {
  const StringView bare = cursor_.TakeBare();
  if (bare.empty()) throw cursor_.ErrorHere(u"Missing value.");
  Slot slot = ReadBareValue(bare);
  if (slot.kind == SlotKind::kText) {
    const std::size_t first_unit = texts_.Size();
    texts_.Add(bare);
    slot.text = TextFrom(first_unit);
  }
  return slot;
}

void Reader::AddKeyOf(const Slot& slot) {
  if (slot.kind == SlotKind::kText) return keys_.Add(slot.text);
  const std::size_t first_unit = texts_.Size();
  AppendValue(texts_, ViewOf(slot, Storage(false)));
  keys_.Add(TextFrom(first_unit));
}

std::unique_ptr<TZAbstractObject> Reader::TakeResult() {
  const Slot slot = slots_.Last();
  slots_.CutTo(slots_.Size() - 1);
  switch (slot.kind) {
    case SlotKind::kContainer: return std::unique_ptr<TZAbstractObject>(slot.object);
    case SlotKind::kNull: return std::make_unique<JNULL>();
    case SlotKind::kInteger: return std::make_unique<_Integer>(slot.integer);
    case SlotKind::kDouble: return std::make_unique<_Double>(slot.number);
    case SlotKind::kText:
      return std::make_unique<_String>(
          String(texts_.View().substr(slot.text.offset, slot.text.length)));
    default: return std::make_unique<_Boolean>(slot.kind == SlotKind::kTrue);
  }
}

}  // namespace zentavo::json_internal
