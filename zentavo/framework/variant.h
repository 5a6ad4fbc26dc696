// A value of one of several kinds, with conversions and operators.
//
// Small and cheap to move: every number and every text of at most kShortText units is kept without
// an allocation, and copying a longer text takes none either. A variant is used by one thread at a
// time; different ones are independent, copies of one text included.
//
//   Variant price = 12.5;
//   Variant line = Variant(u"3") * price;  // 37.5: a text beside a number converts
//   VarToStr(line);                        // "37.5"
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "zentavo/framework/date_time.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant_text.h"

namespace zentavo {

enum class VariantKind : std::uint8_t {
  kEmpty,
  kNull,
  kBoolean,
  kInteger,  // 32 bits
  kInt64,
  kSingle,
  kDouble,
  kCurrency,  // 64 bits, four decimals
  kDate,
  kString,
  kArray,  // of variants
  kByteArray,
};

namespace variant_internal {
// The integers that a variant holds without loss; characters and booleans are none of them.
template <typename T>
concept Integer =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
    !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> && !std::same_as<T, char16_t> &&
    !std::same_as<T, char32_t> && (std::signed_integral<T> || sizeof(T) < sizeof(std::int64_t));
}  // namespace variant_internal

// Copies are deep. A moved-from variant is Empty. Arrays may be nested to any depth: copying and
// destroying them takes no stack.
class ZENTAVO_API Variant {
 public:
  static constexpr std::size_t kShortText = 7;  // units
  using Array = std::vector<Variant>;
  using ByteArray = std::vector<std::byte>;

  Variant() noexcept : Variant(VariantKind::kEmpty, std::int64_t{0}) {}
  Variant(const Variant& other) {
    TakeBits(other);
    if (OnHeap()) CloneHeap();
  }
  Variant(Variant&& other) noexcept {
    TakeBits(other);
    other.Forget();
  }
  Variant& operator=(const Variant& other) {
    if (OnHeap() || other.OnHeap()) {
      *this = Variant(other);
    } else {
      TakeBits(other);
    }
    return *this;
  }
  Variant& operator=(Variant&& other) noexcept {
    if (OnHeap()) {
      ReplaceBy(std::move(other));
    } else if (this != &other) {
      TakeBits(other);
      other.Forget();
    }
    return *this;
  }
  ~Variant() {
    if (OnHeap()) Release();
  }

  // NOLINTBEGIN(google-explicit-constructor): a variant is made from what it may hold
  Variant(bool value) noexcept : Variant(VariantKind::kBoolean, std::int64_t{value}) {}
  template <variant_internal::Integer T>
  Variant(T value) noexcept  // kInteger where every T fits in 32 bits, else kInt64
      : Variant(std::in_range<std::int32_t>(std::numeric_limits<T>::max()) ? VariantKind::kInteger
                                                                           : VariantKind::kInt64,
                std::int64_t{value}) {}
  Variant(float value) noexcept : Variant(VariantKind::kSingle, double{value}) {}
  Variant(double value) noexcept : Variant(VariantKind::kDouble, value) {}
  Variant(StringView value);
  Variant(const String& value) : Variant(StringView(value)) {}
  Variant(const char16_t* value) : Variant(StringView(value)) {}
  Variant(Array value);
  Variant(ByteArray value);
  template <typename T>
  Variant(T*) = delete;  // no pointer turns into a boolean
  // NOLINTEND(google-explicit-constructor)
  static Variant Date(TDateTime value) noexcept { return Variant(VariantKind::kDate, value); }
  // `units` counts ten-thousandths.
  static Variant CurrencyUnits(std::int64_t units) noexcept {
    return Variant(VariantKind::kCurrency, units);
  }
  // The text `front` and `back` make behind each other.
  static Variant Concatenated(StringView front, StringView back);
  static Variant Null() noexcept { return Variant(VariantKind::kNull, std::int64_t{0}); }

  VariantKind Kind() const noexcept { return storage_.wide.kind; }
  bool IsEmpty() const noexcept { return Kind() == VariantKind::kEmpty; }
  bool IsNull() const noexcept { return Kind() == VariantKind::kNull; }
  bool IsString() const noexcept { return Kind() == VariantKind::kString; }
  bool IsArray() const noexcept { return Kind() == VariantKind::kArray; }
  // An integer, a single, a double or a currency.
  bool IsNumeric() const noexcept {
    return Kind() >= VariantKind::kInteger && Kind() <= VariantKind::kCurrency;
  }

  // The held value itself. The kind must be the one the name says; nothing is converted.
  bool BooleanValue() const noexcept { return storage_.wide.payload.integer != 0; }
  std::int32_t Int32Value() const noexcept {
    return static_cast<std::int32_t>(storage_.wide.payload.integer);
  }
  std::int64_t Int64Value() const noexcept {  // kInteger too
    return storage_.wide.payload.integer;
  }
  float SingleValue() const noexcept { return static_cast<float>(storage_.wide.payload.number); }
  double DoubleValue() const noexcept {  // kSingle and kDate too
    return storage_.wide.payload.number;
  }
  std::int64_t CurrencyUnitsValue() const noexcept { return storage_.wide.payload.integer; }
  StringView StringValue() const noexcept {
    if (OnHeap()) return storage_.wide.payload.text->View();
    return {storage_.text.units, storage_.text.length};
  }
  // Whether it holds the empty text; looks at no text on the heap.
  bool IsEmptyText() const noexcept { return IsString() && storage_.wide.length == 0; }
  const Array& ArrayValue() const noexcept { return *storage_.wide.payload.array; }
  Array& ArrayValue() noexcept { return *storage_.wide.payload.array; }
  const ByteArray& ByteArrayValue() const noexcept { return *storage_.wide.payload.bytes; }

  // Makes this a string and appends to it in place, at a constant cost per unit over many calls;
  // what it held before must be a string or Empty. `text` may be part of this variant.
  void AppendText(StringView text);

 private:
  union Payload {
    std::int64_t integer;  // booleans, integers, currency
    double number;         // singles, doubles, dates
    variant_internal::TextBlock* text;
    Array* array;
    ByteArray* bytes;
  };
  // Both shapes begin with the kind and the length, so that either tells what is held.
  struct Wide {
    VariantKind kind = VariantKind::kEmpty;
    std::uint8_t length = 0;  // kHeap when the payload is an owned pointer
    alignas(8) Payload payload = {0};
  };
  struct ShortText {
    VariantKind kind = VariantKind::kString;
    std::uint8_t length = 0;  // units
    char16_t units[kShortText] = {};
  };
  union Storage {
    Storage() : wide() {}
    explicit Storage(const Wide& value) : wide(value) {}
    Wide wide;
    ShortText text;
  };
  static constexpr std::uint8_t kHeap = 0xFF;

  Variant(VariantKind kind, std::int64_t integer) noexcept
      : storage_(Wide{kind, 0, {.integer = integer}}) {}
  Variant(VariantKind kind, double number) noexcept : storage_(Wide{kind, 0, {.number = number}}) {}

  bool OnHeap() const noexcept { return storage_.wide.length == kHeap; }
  // Copies what is held, an owned pointer as it stands. Member by member for all but short texts:
  // reading a number back as one block just after it was written in parts would stall.
  void TakeBits(const Variant& other) noexcept {
    if (other.IsString() && !other.OnHeap()) {
      storage_.text = other.storage_.text;
    } else {
      storage_.wide.kind = other.storage_.wide.kind;
      storage_.wide.length = other.storage_.wide.length;
      storage_.wide.payload = other.storage_.wide.payload;
    }
  }
  // Becomes Empty without releasing anything.
  void Forget() noexcept {
    storage_.wide.kind = VariantKind::kEmpty;
    storage_.wide.length = 0;
  }
  void ReplaceBy(Variant&& other) noexcept;
  void HoldText(StringView front, StringView back);
  void HoldShortText(StringView front, StringView back) noexcept;
  void HoldLongText(variant_internal::TextBlock* text) noexcept;
  void CloneHeap();
  void Release() noexcept;
  static std::unique_ptr<Array> CloneArray(const Array& source);
  static void DestroyArray(Array* array) noexcept;

  Storage storage_;
};

}  // namespace zentavo
