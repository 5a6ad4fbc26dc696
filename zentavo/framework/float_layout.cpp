#include "zentavo/framework/float_layout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace zentavo::float_layout {
namespace {

constexpr int kSmallestFixedPoint = -4;  // 0.00001
constexpr int kMaxSignificant = 18;
// A sign, "0.", four zeros and the digits, or the digits and an exponent.
constexpr std::size_t kGeneralSize = 40;

// Writes plain digits and signs into a buffer that the caller made large enough.
template <typename Unit>
class UnitWriter {
 public:
  explicit UnitWriter(Unit* at) : at_(at) {}

  Unit* End() const { return at_; }
  void Put(Unit unit) { *at_++ = unit; }
  void PutAscii(std::string_view text) {
    for (const char unit : text) Put(static_cast<Unit>(unit));
  }
  void PutZeros(int count) {
    for (; count > 0; --count) Put(static_cast<Unit>('0'));
  }

  void PutFixed(const DecimalDigits& digits, Unit separator) {
    const std::string_view text = digits.Digits();
    const int point = digits.Point();
    if (point <= 0) {
      Put(static_cast<Unit>('0'));
      if (text.empty()) return;
      Put(separator);
      PutZeros(-point);
      PutAscii(text);
      return;
    }
    const auto before = static_cast<std::size_t>(point);
    PutAscii(text.substr(0, before));
    if (before >= text.size()) {
      PutZeros(point - static_cast<int>(text.size()));
      return;
    }
    Put(separator);
    PutAscii(text.substr(before));
  }

  void PutScientific(const DecimalDigits& digits, Unit separator) {
    const std::string_view text = digits.Digits();
    Put(static_cast<Unit>(text[0]));
    if (text.size() > 1) {
      Put(separator);
      PutAscii(text.substr(1));
    }
    Put(static_cast<Unit>('E'));
    std::array<char, 8> exponent;
    const char* const end =
        std::to_chars(exponent.data(), exponent.data() + exponent.size(), digits.Point() - 1).ptr;
    PutAscii({exponent.data(), static_cast<std::size_t>(end - exponent.data())});
  }

 private:
  Unit* at_;
};

template <typename Text>
void AppendGeneralTo(Text& out, DecimalDigits& digits, int significant,
                     typename Text::value_type separator) {
  using Unit = typename Text::value_type;
  significant = std::clamp(significant, 1, kMaxSignificant);
  digits.RoundToSignificant(significant);
  std::array<Unit, kGeneralSize> units;
  UnitWriter<Unit> writer(units.data());
  if (digits.Negative()) writer.Put(static_cast<Unit>('-'));
  const bool fixed =
      digits.IsZero() || (digits.Point() <= significant && digits.Point() >= kSmallestFixedPoint);
  if (fixed) {
    writer.PutFixed(digits, separator);
  } else {
    writer.PutScientific(digits, separator);
  }
  out.append(units.data(), static_cast<std::size_t>(writer.End() - units.data()));
}

void AppendExponent(String& out, int exponent) {
  out += exponent < 0 ? u"E-" : u"E+";
  exponent = std::abs(exponent);
  for (int unit = 100; unit > 0; unit /= 10) {
    out += static_cast<char16_t>(u'0' + exponent / unit % 10);
  }
}

}  // namespace

std::string_view NonFiniteName(double value) {
  if (std::isnan(value)) return "NAN";
  return value < 0 ? "-INF" : "INF";
}

void AppendAscii(String& out, std::string_view text) {
  std::array<char16_t, 32> units;
  for (; text.size() > units.size(); text.remove_prefix(units.size())) {
    std::copy_n(text.begin(), units.size(), units.begin());
    out.append(units.data(), units.size());
  }
  std::copy(text.begin(), text.end(), units.begin());
  out.append(units.data(), text.size());
}

void AppendAscii(AnsiString& out, std::string_view text) {
  out += text;
}

void AppendGeneral(String& out, DecimalDigits digits, int significant, char16_t separator) {
  AppendGeneralTo(out, digits, significant, separator);
}

void AppendGeneral(AnsiString& out, DecimalDigits digits, int significant, char separator) {
  AppendGeneralTo(out, digits, significant, separator);
}

void AppendScientific(String& out, DecimalDigits digits, int significant, char16_t separator) {
  digits.RoundToSignificant(significant);
  if (digits.Negative()) out += u'-';
  const int point = digits.IsZero() ? 1 : digits.Point();
  for (int index = 0; index < significant; ++index) {
    if (index == 1) out += separator;
    out += static_cast<char16_t>(digits.DigitAt(point - 1 - index));
  }
  AppendExponent(out, point - 1);
}

void AppendFixed(String& out, DecimalDigits digits, int decimals, char16_t separator,
                 char16_t thousand_separator) {
  digits.RoundToDecimals(decimals);
  if (digits.Negative()) out += u'-';
  for (int place = std::max(digits.Point(), 1) - 1; place >= 0; --place) {
    out += static_cast<char16_t>(digits.DigitAt(place));
    if (thousand_separator != 0 && place > 0 && place % 3 == 0) out += thousand_separator;
  }
  if (decimals > 0 && separator != 0) out += separator;
  for (int place = 1; place <= decimals; ++place) {
    out += static_cast<char16_t>(digits.DigitAt(-place));
  }
}

}  // namespace zentavo::float_layout
