#include "zentavo/framework/variant.h"

#include <algorithm>
#include <utility>

namespace zentavo {

using variant_internal::TextBlock;

static_assert(sizeof(Variant) == 16);

Variant::Variant(StringView value) : Variant() {
  HoldText(value, {});
}

Variant Variant::Concatenated(StringView front, StringView back) {
  Variant text;
  text.HoldText(front, back);
  return text;
}

Variant::Variant(Array value)
    : storage_(Wide{VariantKind::kArray,
                    kHeap,
                    {.array = std::make_unique<Array>(std::move(value)).release()}}) {}

Variant::Variant(ByteArray value)
    : storage_(Wide{VariantKind::kByteArray,
                    kHeap,
                    {.bytes = std::make_unique<ByteArray>(std::move(value)).release()}}) {}

void Variant::HoldText(StringView front, StringView back) {
  if (front.size() + back.size() <= kShortText) {
    HoldShortText(front, back);
  } else {
    HoldLongText(TextBlock::Create(front, back));
  }
}

void Variant::HoldShortText(StringView front, StringView back) noexcept {
  ShortText held;
  held.length = static_cast<std::uint8_t>(front.size() + back.size());
  std::copy(back.begin(), back.end(), std::copy(front.begin(), front.end(), held.units));
  storage_.text = held;
}

void Variant::HoldLongText(TextBlock* text) noexcept {
  storage_.wide = {VariantKind::kString, kHeap, {.text = text}};
}

void Variant::AppendText(StringView text) {
  if (!OnHeap()) {
    HoldText(IsString() ? StringValue() : StringView(), text);
    return;
  }
  TextBlock* held = storage_.wide.payload.text;
  if (held->TryAppend(text)) return;
  const std::size_t size = held->View().size() + text.size();
  HoldLongText(TextBlock::Create(held->View(), text, size + size / 2));
  held->RemoveHolder();
}

void Variant::CloneHeap() {
  Payload& payload = storage_.wide.payload;
  switch (storage_.wide.kind) {
    case VariantKind::kString: payload.text->AddHolder(); break;
    case VariantKind::kArray: payload.array = CloneArray(*payload.array).release(); break;
    default: payload.bytes = std::make_unique<ByteArray>(*payload.bytes).release();
  }
}

// `other` may be part of what is released.
void Variant::ReplaceBy(Variant&& other) noexcept {
  if (&other == this) return;
  const Variant released_last(std::move(*this));
  TakeBits(other);
  other.Forget();
}

void Variant::Release() noexcept {
  Payload& payload = storage_.wide.payload;
  switch (storage_.wide.kind) {
    case VariantKind::kString: payload.text->RemoveHolder(); break;
    case VariantKind::kArray: DestroyArray(payload.array); break;
    default: std::unique_ptr<ByteArray>(payload.bytes).reset();
  }
}

std::unique_ptr<Variant::Array> Variant::CloneArray(const Array& source) {
  auto root = std::make_unique<Array>();
  std::vector<std::pair<const Array*, Array*>> open = {{&source, root.get()}};
  while (!open.empty()) {
    const auto [from, to] = open.back();
    open.pop_back();
    to->reserve(from->size());  // keeps the addresses in `open` valid
    for (const Variant& element : *from) {
      if (element.IsArray()) {
        to->push_back(Variant(Array()));
        open.emplace_back(&element.ArrayValue(), &to->back().ArrayValue());
      } else {
        to->push_back(element);
      }
    }
  }
  return root;
}

// Walks down the last elements and back without a stack or an allocation: while a nested array is
// being emptied, its place in the array around it holds the way back.
void Variant::DestroyArray(Array* array) noexcept {
  Array* around = nullptr;
  while (array != nullptr) {
    if (array->empty()) {
      std::unique_ptr<Array>(array).reset();
      array = around;
      if (array != nullptr) {
        Wide& place = array->back().storage_.wide;
        around = std::exchange(place, Wide()).payload.array;
        array->pop_back();
      }
    } else if (array->back().IsArray()) {
      Array* nested = std::exchange(array->back().storage_.wide.payload.array, around);
      around = std::exchange(array, nested);
    } else {
      array->pop_back();
    }
  }
}

}  // namespace zentavo
