// A JSON object: pairs of key and value in the order they were added.
//
//   TJSONObject order(u"{id: 7, customer: 'Papas', paid: true}");
//   order.put(u"total", 12.5);
//   order.getInt(u"ID");                  // 7: keys match without regard to case
//   for (const JSONMember& member : order) use(member.key, *member.value);
//   order.toString();  // {"id":7,"customer":"Papas","paid":true,"total":12.500000}
//
// A key that occurs twice in a text is kept twice: lookups find the first, the text form has both.
// A null key is a view without data, StringView(); the empty text is a key like any other.
// Lookups cost the same in small and large objects; `remove` moves what follows.
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

#include "zentavo/json/container.h"

namespace zentavo {

class JSONTokener;
class TJSONArray;
class TStringList;

namespace json_internal {
class KeyIndex;
}

// One pair of an object: valid until the object changes. The value is null where it is missing.
struct JSONMember {
  StringView key;
  const TZAbstractObject* value;
};

// Copies are deep. What the operations lend by pointer or reference stays valid until the value is
// replaced or removed, or the object goes.
class ZENTAVO_API TJSONObject : public TJSONContainer {
 public:
  TJSONObject();
  // Read one object; what follows it is left (a tokener stands behind it) or ignored. Raise
  // ParseException.
  explicit TJSONObject(JSONTokener& Tokener);
  explicit TJSONObject(StringView Text);
  // The strings of a list as keys; the values are copies of the JSON values that the list owns
  // beside them, null for the other entries.
  explicit TJSONObject(const TStringList& Names);
  // Copies of the pairs of `Source` whose keys are in `Names`, in that order.
  TJSONObject(const TJSONObject& Source, const TStringList& Names);
  static TJSONObject FromUtf8(std::string_view Text);
  // Reads from the stream's position to its end, as UTF-8.
  static TJSONObject FromStream(TStream& Source);

  TJSONObject(const TJSONObject& other);
  TJSONObject(TJSONObject&& other) noexcept;
  TJSONObject& operator=(TJSONObject other) noexcept;
  ~TJSONObject() override;

  // The null value, shared. (The name itself is a macro of C++.)
  static const JNULL& Null();

  // A null key raises NullPointerException "Null key" in lookups, "Null key." in `put`,
  // `accumulate` and `remove`.
  bool has(StringView Key) const;
  bool isNull(StringView Key) const;  // missing or the null value
  // Lends the value; null when there is none.
  TZAbstractObject* opt(StringView Key);
  const TZAbstractObject* opt(StringView Key) const;

  // All raise NoSuchElementException "TJSONObject[KEY] not found." with the quoted key.
  TZAbstractObject& get(StringView Key);
  const TZAbstractObject& get(StringView Key) const;
  // A boolean, or a text that spells one in any case. ClassCastException "... is not a Boolean."
  bool getBoolean(StringView Key) const;
  // A number, or a text that is one. NumberFormatException "... is not a number."
  double getDouble(StringView Key) const;
  // The same, rounded halves to even; ERangeError "Range check error" beyond 32 bits.
  std::int32_t getInt(StringView Key) const;
  // ClassCastException "... is not a TJSONArray.", "... is not a TJSONObject."
  TJSONArray& getJSONArray(StringView Key);
  const TJSONArray& getJSONArray(StringView Key) const;
  TJSONObject& getJSONObject(StringView Key);
  const TJSONObject& getJSONObject(StringView Key) const;
  String getString(StringView Key) const;  // the value's text form

  // The same readings, with Default, or null, for what is missing or reads otherwise.
  bool optBoolean(StringView Key, bool Default = false) const;
  double optDouble(StringView Key, double Default = _Double::NaN()) const;
  std::int32_t optInt(StringView Key, std::int32_t Default = 0) const;
  TJSONArray* optJSONArray(StringView Key);
  const TJSONArray* optJSONArray(StringView Key) const;
  TJSONObject* optJSONObject(StringView Key);
  const TJSONObject* optJSONObject(StringView Key) const;
  String optString(StringView Key, StringView Default = {}) const;

  // Add the value behind the others under a new key, or replace the value of the key. A null
  // pointer removes the key.
  TJSONObject& put(StringView Key, bool Value);
  TJSONObject& put(StringView Key, double Value);
  TJSONObject& put(StringView Key, std::int32_t Value);
  TJSONObject& put(StringView Key, StringView Value);
  TJSONObject& put(StringView Key, const String& Value) { return put(Key, StringView(Value)); }
  TJSONObject& put(StringView Key, const char16_t* Value) { return put(Key, StringView(Value)); }
  TJSONObject& put(StringView Key, std::unique_ptr<TZAbstractObject> Value);
  TJSONObject& put(StringView Key, const TZAbstractObject& Value);  // a copy of it
  // The same, but a null pointer changes nothing.
  TJSONObject& putOpt(StringView Key, std::unique_ptr<TZAbstractObject> Value);
  // Puts the value under a new key; a second value of the key makes both an array, further ones are
  // appended to it. A null pointer changes nothing.
  TJSONObject& accumulate(StringView Key, std::unique_ptr<TZAbstractObject> Value);
  // Takes the value out; null when there is none.
  std::unique_ptr<TZAbstractObject> remove(StringView Key);
  void clean() override;

  std::vector<String> keys() const;
  TJSONArray names() const;  // the keys as strings
  // Copies of the values of the keys in `Names`, an empty slot for each that is missing.
  TJSONArray toJSONArray(const TJSONArray& Names) const;
  // Puts copies of all pairs into `Target`; a key that is repeated here is repeated there.
  void assignTo(TJSONObject& Target) const;

  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = JSONMember;
    using difference_type = std::ptrdiff_t;
    using pointer = const JSONMember*;
    using reference = JSONMember;

    Iterator(const TJSONObject* object, std::uint32_t index) : object_(object), index_(index) {}
    JSONMember operator*() const { return object_->MemberAt(index_); }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator& other) const = default;

   private:
    const TJSONObject* object_;
    std::uint32_t index_;
  };
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, storage_.Count()}; }

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool instanceOf(const TZAbstractObject& Value) const override;
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kObject; }

 private:
  JSONMember MemberAt(std::uint32_t index) const { return {storage_.Key(index), Lend(index)}; }
  std::optional<std::uint32_t> Find(StringView key) const;
  std::optional<std::uint32_t> Scan(StringView key) const;
  std::uint32_t Demand(StringView key) const;  // where the key is, else "not found."
  json_internal::ValueView ViewAt(StringView key) const;
  // The position of `key`, added with an empty slot when it is new, and room for `units`.
  json_internal::Storage::OldBlock Place(StringView key, std::size_t units, std::uint32_t& index);
  void Append(StringView key);
  TJSONObject& PutSlot(StringView key, const json_internal::Slot& slot);

  // Built when scanning the keys has cost as much as building it.
  mutable std::unique_ptr<json_internal::KeyIndex> index_;
  mutable std::uint32_t scanned_ = 0;
};

}  // namespace zentavo
