// What JSON objects and arrays have in common.
#pragma once

#include <cstdint>
#include <memory>

#include "zentavo/json/storage.h"
#include "zentavo/json/value.h"

namespace zentavo {

class TStream;

namespace json_internal {
struct Access;
struct ValueView;
}  // namespace json_internal

// A container owns its values and frees them with itself. Copying, comparing, writing and freeing
// take no stack for nested containers, however deep.
class ZENTAVO_API TJSONContainer : public TZAbstractObject {
 public:
  ~TJSONContainer() override;
  TJSONContainer& operator=(const TJSONContainer&) = delete;
  TJSONContainer& operator=(TJSONContainer&&) = delete;

  std::int32_t length() const { return static_cast<std::int32_t>(storage_.Count()); }
  bool isEmpty() const { return storage_.Count() == 0; }
  virtual void clean();  // frees all values

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool equals(const TZAbstractObject& Value) const override;
  std::int32_t hash() const override;  // from the scalars and the lengths of nested containers

  // The compact form: pure ASCII, no blanks.
  String toString() const override;
  // The indented form: one value a line in containers of more than one, each level `IndentFactor`
  // blanks deeper than the last, the outermost at `Indent`.
  String toString(std::int32_t IndentFactor, std::int32_t Indent = 0) const;
  AnsiString toUtf8() const;  // the compact form
  // Writes the compact form in UTF-8; raises EWriteError.
  void SaveToStream(TStream& Target) const;

 protected:
  explicit TJSONContainer(bool keyed) : storage_(keyed) {}
  TJSONContainer(const TJSONContainer& other);
  TJSONContainer(TJSONContainer&& other) noexcept;
  void Swap(TJSONContainer& other) noexcept;

  json_internal::ValueView View(std::uint32_t index) const;
  // The value at a position, null for an empty slot. What has been read becomes an object of its
  // own only here.
  TZAbstractObject* Lend(std::uint32_t index) const;
  std::unique_ptr<TZAbstractObject> Take(std::uint32_t index);  // leaves an empty slot
  void Free(std::uint32_t index) noexcept;                      // leaves an empty slot
  // Frees what is there and takes the value over; null leaves an empty slot.
  void Own(std::uint32_t index, std::unique_ptr<TZAbstractObject> value);

  json_internal::Storage storage_;

 private:
  friend struct json_internal::Access;

  void FreeAll() noexcept;
};

namespace json_internal {

struct Access {
  static Storage& Of(TJSONContainer& container) { return container.storage_; }
  static const Storage& Of(const TJSONContainer& container) { return container.storage_; }
};

// A container of the values that lie in `document`.
ZENTAVO_API std::unique_ptr<TJSONContainer> MakeContainer(const Slot& nested, Document document);

}  // namespace json_internal

}  // namespace zentavo
