// A JSON array: values in order, some of its slots perhaps empty.
//
//   TJSONArray prices(u"[1.5, 2, , 'x']");
//   prices.getDouble(1);  // 2
//   prices.opt(2);        // null: an empty slot
//   prices.put(true).toString();  // [1.500000,2,null,"x",true]
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

#include "zentavo/json/container.h"

namespace zentavo {

class JSONTokener;
class TJSONObject;

// Copies are deep. What the operations lend by pointer or reference stays valid until the value is
// replaced or removed, or the array goes. Indices count from 0.
class ZENTAVO_API TJSONArray : public TJSONContainer {
 public:
  TJSONArray() : TJSONContainer(false) {}
  // Read one array; what follows it is left (a tokener stands behind it) or ignored. Raise
  // ParseException.
  explicit TJSONArray(JSONTokener& Tokener);
  explicit TJSONArray(StringView Text);
  // The values of a list; null pointers become empty slots.
  explicit TJSONArray(std::vector<std::unique_ptr<TZAbstractObject>> List);
  explicit TJSONArray(const std::vector<const TZAbstractObject*>& List);  // copies of them
  static TJSONArray FromUtf8(std::string_view Text);
  // Reads from the stream's position to its end, as UTF-8.
  static TJSONArray FromStream(TStream& Source);

  TJSONArray(const TJSONArray& other) = default;
  TJSONArray(TJSONArray&& other) noexcept = default;
  TJSONArray& operator=(TJSONArray other) noexcept {
    Swap(other);
    return *this;
  }
  ~TJSONArray() override = default;

  bool isNull(std::int32_t Index) const;  // no such index, an empty slot or the null value
  // Lends the value; null for an empty slot and an index out of range.
  TZAbstractObject* opt(std::int32_t Index);
  const TZAbstractObject* opt(std::int32_t Index) const;

  // All raise NoSuchElementException "TJSONArray[INDEX] not found."
  TZAbstractObject& get(std::int32_t Index);
  const TZAbstractObject& get(std::int32_t Index) const;
  // As an object's. ClassCastException "TJSONArray[INDEX] not a Boolean."; callers rely on the
  // wording of this and the next.
  bool getBoolean(std::int32_t Index) const;
  // NumberFormatException "TJSONObject[INDEX] is not a number."
  double getDouble(std::int32_t Index) const;
  std::int32_t getInt(std::int32_t Index) const;
  // ClassCastException "TJSONArray[INDEX] is not a TJSONArray.", "TJSONArray[INDEX] is not a
  // TJSONObject is "
  TJSONArray& getJSONArray(std::int32_t Index);
  const TJSONArray& getJSONArray(std::int32_t Index) const;
  TJSONObject& getJSONObject(std::int32_t Index);
  const TJSONObject& getJSONObject(std::int32_t Index) const;
  String getString(std::int32_t Index) const;

  // The same readings, with Default, or null, for what is missing or reads otherwise.
  bool optBoolean(std::int32_t Index, bool Default = false) const;
  double optDouble(std::int32_t Index, double Default = _Double::NaN()) const;
  std::int32_t optInt(std::int32_t Index, std::int32_t Default = 0) const;
  TJSONArray* optJSONArray(std::int32_t Index);
  const TJSONArray* optJSONArray(std::int32_t Index) const;
  TJSONObject* optJSONObject(std::int32_t Index);
  const TJSONObject* optJSONObject(std::int32_t Index) const;
  String optString(std::int32_t Index, StringView Default = {}) const;

  // Append. A null pointer appends an empty slot.
  TJSONArray& put(bool Value);
  TJSONArray& put(double Value);
  TJSONArray& put(std::int32_t Value);
  TJSONArray& put(StringView Value);
  TJSONArray& put(const String& Value) { return put(StringView(Value)); }
  TJSONArray& put(const char16_t* Value) { return put(StringView(Value)); }
  TJSONArray& put(std::unique_ptr<TZAbstractObject> Value);
  TJSONArray& put(const TZAbstractObject& Value);  // a copy of it
  // Replace the value at Index; at `length` they append. Any other index raises
  // NoSuchElementException "TJSONArray[INDEX] not found."
  TJSONArray& put(std::int32_t Index, bool Value);
  TJSONArray& put(std::int32_t Index, double Value);
  TJSONArray& put(std::int32_t Index, std::int32_t Value);
  TJSONArray& put(std::int32_t Index, StringView Value);
  TJSONArray& put(std::int32_t Index, const String& Value) { return put(Index, StringView(Value)); }
  TJSONArray& put(std::int32_t Index, const char16_t* Value) {
    return put(Index, StringView(Value));
  }
  TJSONArray& put(std::int32_t Index, std::unique_ptr<TZAbstractObject> Value);
  TJSONArray& put(std::int32_t Index, const TZAbstractObject& Value);
  // Takes the value out, and those behind it move up; null when there is none.
  std::unique_ptr<TZAbstractObject> remove(std::int32_t Index);

  // The elements' text forms with `Separator` between them.
  String join(StringView Separator) const;
  // An object of copies of the values, under the keys of `Names` at the same indices.
  TJSONObject toJSONObject(const TJSONArray& Names) const;
  // Lends all values in order, null for empty slots.
  std::vector<const TZAbstractObject*> toList() const;

  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = const TZAbstractObject*;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = value_type;

    Iterator(const TJSONArray* array, std::uint32_t index) : array_(array), index_(index) {}
    const TZAbstractObject* operator*() const { return array_->Lend(index_); }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator& other) const = default;

   private:
    const TJSONArray* array_;
    std::uint32_t index_;
  };
  // Range-for lends each value, null for an empty slot.
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, storage_.Count()}; }

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool instanceOf(const TZAbstractObject& Value) const override;
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kArray; }

 private:
  bool HasIndex(std::int32_t index) const { return index >= 0 && index < length(); }
  std::uint32_t Demand(std::int32_t index) const;  // a slot that is not empty, else "not found."
  json_internal::ValueView ViewAt(std::int32_t index) const;
  // Checks the place to put at, adds a slot at `length`, and makes room for `units`.
  json_internal::Storage::OldBlock Place(std::int32_t index, std::size_t units);
  TJSONArray& PutSlot(std::int32_t index, const json_internal::Slot& slot);
};

}  // namespace zentavo
