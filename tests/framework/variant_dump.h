// Variants and failures as text, for tables of expected results.
#pragma once

#include <functional>
#include <string>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/variant.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

inline std::string Dump(const Variant& value) {
  const std::string kind = ToUtf8(VariantKindName(value.Kind()));
  if (value.IsEmpty() || value.IsNull()) return kind;
  if (value.IsArray()) return kind + " of " + std::to_string(value.ArrayValue().size());
  if (value.Kind() == VariantKind::kDate) return kind + " " + ToUtf8(VarToStr(value.DoubleValue()));
  return kind + " " + ToUtf8(VarToStr(value));
}

// What `calculate` gives, or "ERROR: message" with the class of what it raises.
inline std::string DumpOf(const std::function<Variant()>& calculate) {
  try {
    return Dump(calculate());
  } catch (const EVariantTypeCastError& error) {
    return std::string("EVariantTypeCastError: ") + error.what();
  } catch (const EVariantError& error) {
    return std::string("EVariantError: ") + error.what();
  } catch (const EZeroDivide& error) {
    return std::string("EZeroDivide: ") + error.what();
  } catch (const EDivByZero& error) {
    return std::string("EDivByZero: ") + error.what();
  } catch (const ERangeError& error) {
    return std::string("ERangeError: ") + error.what();
  }
}

}  // namespace zentavo
