// JSON values: the root of their classes and the scalar ones. Containers are in object.h and
// array.h, the reader in tokener.h.
//
// A tree of values is used by one thread at a time, reading included: looking a value up may change
// how its container keeps it. The shared values may be used by every thread.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"
#include "zentavo/json/errors.h"

namespace zentavo {

enum class JSONKind : std::uint8_t {
  kNull,
  kBoolean,
  kInteger,
  kDouble,
  kString,
  kObject,
  kArray,
  kOther,  // a host's own class
};

class ZENTAVO_API TZAbstractObject : public TObject {
 public:
  // A deep copy. The base raises NotImplmentedFeature "TZAbstractObject.Clone is not implemented",
  // with the class's name.
  virtual std::unique_ptr<TZAbstractObject> Clone() const;
  // Numbers are equal by value, texts unit by unit, arrays slot by slot (an empty slot equals
  // null), objects when their pairs are, whatever their order. The base compares identity.
  virtual bool equals(const TZAbstractObject& Value) const;
  // Equal values have equal hashes.
  virtual std::int32_t hash() const;
  // Whether `Value` is of this value's class or of one derived from it.
  virtual bool instanceOf(const TZAbstractObject& Value) const;
  // The text form; the base gives the class's name and the address, "%s <%p>".
  virtual String toString() const;

  virtual StringView ClassName() const;
  virtual JSONKind Kind() const noexcept { return JSONKind::kOther; }
};

inline bool operator==(const TZAbstractObject& a, const TZAbstractObject& b) {
  return a.equals(b);
}

// NOLINTBEGIN(bugprone-reserved-identifier): the names that hosts know

class ZENTAVO_API _Number : public TZAbstractObject {
 public:
  // Rounded to the nearest integer, halves to even. Raises ERangeError "Range check error" beyond
  // 32 bits.
  virtual std::int32_t intValue() const = 0;
  virtual double doubleValue() const = 0;

  bool equals(const TZAbstractObject& Value) const override;
  std::int32_t hash() const override;
  bool instanceOf(const TZAbstractObject& Value) const override;
  StringView ClassName() const override;
};

class ZENTAVO_API _Integer : public _Number {
 public:
  explicit _Integer(std::int32_t Value) : FValue(Value) {}

  std::int32_t intValue() const override { return FValue; }
  double doubleValue() const override { return FValue; }
  // `Text` as digits of base 2 to 36 behind an optional sign. Raises NumberFormatException "'%s' is
  // not a valid integer value", also beyond 32 bits.
  static std::int32_t parseInt(StringView Text, std::int32_t Radix);
  // At least two upper-case hexadecimal digits.
  static String toHexString(char16_t Ch);

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool instanceOf(const TZAbstractObject& Value) const override;
  String toString() const override;
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kInteger; }

 private:
  std::int32_t FValue;
};

class ZENTAVO_API _Double : public _Number {
 public:
  explicit _Double(double Value) : FValue(Value) {}
  // With '.' as the decimal separator in every locale. Raises NumberFormatException "'%s' is not a
  // valid floating point value".
  explicit _Double(StringView Text);
  static double NaN();

  std::int32_t intValue() const override;
  double doubleValue() const override { return FValue; }

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool instanceOf(const TZAbstractObject& Value) const override;
  String toString() const override;  // exactly six decimals
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kDouble; }

 private:
  double FValue;
};

class ZENTAVO_API _Boolean : public TZAbstractObject {
 public:
  explicit _Boolean(bool Value) : FValue(Value) {}

  bool boolValue() const { return FValue; }
  // The shared values.
  static const _Boolean& _TRUE();
  static const _Boolean& _FALSE();
  static const _Boolean& valueOf(bool Value) { return Value ? _TRUE() : _FALSE(); }

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool equals(const TZAbstractObject& Value) const override;
  std::int32_t hash() const override { return FValue ? 1 : 0; }
  bool instanceOf(const TZAbstractObject& Value) const override;
  String toString() const override;
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kBoolean; }

 private:
  bool FValue;
};

class ZENTAVO_API _String : public TZAbstractObject {
 public:
  explicit _String(String Text) : FText(std::move(Text)) {}

  StringView Text() const { return FText; }
  bool equalsIgnoreCase(StringView Text) const { return SameText(FText, Text); }

  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool equals(const TZAbstractObject& Value) const override;
  std::int32_t hash() const override;
  bool instanceOf(const TZAbstractObject& Value) const override;
  String toString() const override { return FText; }
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kString; }

 private:
  String FText;
};

// NOLINTEND(bugprone-reserved-identifier)

class ZENTAVO_API JNULL : public TZAbstractObject {
 public:
  std::unique_ptr<TZAbstractObject> Clone() const override;
  bool equals(const TZAbstractObject& Value) const override;
  std::int32_t hash() const override { return 0; }
  bool instanceOf(const TZAbstractObject& Value) const override;
  String toString() const override { return u"null"; }
  StringView ClassName() const override;
  JSONKind Kind() const noexcept override { return JSONKind::kNull; }
};

}  // namespace zentavo
