#include "zentavo/framework/format.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "zentavo/framework/decimal_digits.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/float_layout.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {
namespace {

constexpr int kMaxSize = 65535;  // of a width, a precision and an index
constexpr int kGeneralDigits = 15;
constexpr int kDefaultDecimals = 2;

struct Placeholder {
  char16_t type = 0;  // in upper case
  int width = 0;
  std::optional<int> precision;
  bool pads_right = false;
};

class Formatter {
 public:
  Formatter(StringView pattern, std::span<const FormatArg> args, const TFormatSettings& settings)
      : pattern_(pattern), rest_(pattern), args_(args), settings_(settings) {}

  String Run() {
    while (!rest_.empty()) {
      const std::size_t mark = std::min(rest_.find(u'%'), rest_.size());
      out_ += rest_.substr(0, mark);
      rest_.remove_prefix(mark);
      if (rest_.empty()) break;
      rest_.remove_prefix(1);
      if (TakeIf(u'%')) {
        out_ += u'%';
      } else {
        WritePadded(ReadPlaceholder());
      }
    }
    return std::move(out_);
  }

 private:
  // ---- Reading a placeholder ----

  bool TakeIf(char16_t unit) {
    if (rest_.empty() || rest_[0] != unit) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::optional<int> TakeNumber() {
    std::optional<int> number;
    for (; !rest_.empty() && IsDigit(rest_[0]); rest_.remove_prefix(1)) {
      number = number.value_or(0) * 10 + (rest_[0] - u'0');
      if (*number > kMaxSize) RaiseInvalid();
    }
    return number;
  }

  std::optional<int> TakeSize() { return TakeIf(u'*') ? SizeFromArgument() : TakeNumber(); }

  Placeholder ReadPlaceholder() {
    Placeholder placeholder;
    auto number = TakeNumber();
    if (TakeIf(u':')) {
      next_ = static_cast<std::size_t>(number.value_or(0));
      number.reset();
    }
    if (!number) {
      placeholder.pads_right = TakeIf(u'-');
      number = TakeSize();
    }
    placeholder.width = number.value_or(0);
    if (placeholder.width < 0) {
      placeholder.pads_right = true;
      placeholder.width = -placeholder.width;
    }
    if (TakeIf(u'.')) {
      placeholder.precision = TakeSize().value_or(0);
      if (*placeholder.precision < 0) placeholder.precision.reset();
    }
    if (rest_.empty()) RaiseInvalid();
    placeholder.type = UpCase(rest_[0]);
    rest_.remove_prefix(1);
    return placeholder;
  }

  const FormatArg& TakeArgument() {
    if (next_ >= args_.size()) RaiseMissing();
    return args_[next_++];
  }

  int SizeFromArgument() {
    const auto* const value = std::get_if<std::int64_t>(&TakeArgument().Get());
    if (value == nullptr || *value > kMaxSize || *value < -kMaxSize) RaiseInvalid();
    return static_cast<int>(*value);
  }

  // ---- Writing it ----

  void WritePadded(const Placeholder& placeholder) {
    const std::size_t start = out_.size();
    Write(placeholder);
    const std::size_t written = out_.size() - start;
    const auto width = static_cast<std::size_t>(placeholder.width);
    if (written >= width) return;
    out_.insert(placeholder.pads_right ? out_.size() : start, width - written, u' ');
  }

  void Write(const Placeholder& placeholder) {
    switch (placeholder.type) {
      case u'D': WriteDecimal(placeholder); break;
      case u'U': WriteDigits(placeholder, UnsignedText(Bits())); break;
      case u'X': WriteDigits(placeholder, IntToHex(Bits(), 1)); break;
      case u'S': out_ += TextArgument().substr(0, Cut(placeholder)); break;
      case u'P': WritePointer(); break;
      case u'E':
      case u'F':
      case u'G':
      case u'N':
      case u'M': WriteFloat(placeholder); break;
      default: RaiseInvalid();
    }
  }

  void WriteDecimal(const Placeholder& placeholder) {
    const FormatArg& argument = TakeArgument();
    if (const auto* const value = std::get_if<std::int64_t>(&argument.Get())) {
      if (*value < 0) out_ += u'-';
      const auto bits = static_cast<std::uint64_t>(*value);
      WriteDigits(placeholder, UnsignedText(*value < 0 ? 0 - bits : bits));
    } else if (const auto* const bits = std::get_if<std::uint64_t>(&argument.Get())) {
      WriteDigits(placeholder, UnsignedText(*bits));
    } else {
      RaiseInvalid();
    }
  }

  static String UnsignedText(std::uint64_t value) {
    String text;
    AppendUInt(text, value);
    return text;
  }

  // The next argument's bits, of the size it had.
  std::uint64_t Bits() {
    const FormatArg& argument = TakeArgument();
    if (const auto* const bits = std::get_if<std::uint64_t>(&argument.Get())) return *bits;
    const auto* const value = std::get_if<std::int64_t>(&argument.Get());
    if (value == nullptr) RaiseInvalid();
    return argument.IsWide() ? static_cast<std::uint64_t>(*value)
                             : static_cast<std::uint32_t>(*value);
  }

  void WriteDigits(const Placeholder& placeholder, StringView digits) {
    const auto least = static_cast<std::size_t>(placeholder.precision.value_or(0));
    if (least > digits.size()) out_.append(least - digits.size(), u'0');
    out_ += digits;
  }

  static std::size_t Cut(const Placeholder& placeholder) {
    return placeholder.precision ? static_cast<std::size_t>(*placeholder.precision)
                                 : StringView::npos;
  }

  StringView TextArgument() {
    const FormatArg::Value& value = TakeArgument().Get();
    if (const auto* const view = std::get_if<StringView>(&value)) return *view;
    if (const auto* const text = std::get_if<String>(&value)) return *text;
    RaiseInvalid();
  }

  void WritePointer() {
    const auto* const pointer = std::get_if<const void*>(&TakeArgument().Get());
    if (pointer == nullptr) RaiseInvalid();
    out_ += IntToHex(reinterpret_cast<std::uintptr_t>(*pointer), 2 * sizeof(void*));
  }

  void WriteFloat(const Placeholder& placeholder) {
    const auto* const value = std::get_if<double>(&TakeArgument().Get());
    if (value == nullptr) RaiseInvalid();
    if (!std::isfinite(*value)) {
      float_layout::AppendAscii(out_, float_layout::NonFiniteName(*value));
      return;
    }
    const DecimalDigits digits(*value);
    const char16_t separator = settings_.DecimalSeparator;
    const auto& precision = placeholder.precision;
    switch (placeholder.type) {
      case u'E':
        float_layout::AppendScientific(out_, digits,
                                       std::max(precision.value_or(kGeneralDigits), 1), separator);
        break;
      case u'G':
        float_layout::AppendGeneral(out_, digits, precision.value_or(kGeneralDigits), separator);
        break;
      case u'M': WriteMoney(digits, precision.value_or(settings_.CurrencyDecimals)); break;
      default: {
        const char16_t thousands = placeholder.type == u'N' ? settings_.ThousandSeparator : u'\0';
        float_layout::AppendFixed(out_, digits, precision.value_or(kDefaultDecimals), separator,
                                  thousands);
      }
    }
  }

  void WriteMoney(const DecimalDigits& digits, int decimals) {
    const std::size_t start = out_.size();
    float_layout::AppendFixed(out_, digits, decimals, settings_.DecimalSeparator,
                              settings_.ThousandSeparator);
    const bool signed_amount = out_[start] == u'-';
    out_.insert(signed_amount ? start + 1 : start, settings_.CurrencyString);
  }

  [[noreturn]] void RaiseInvalid() const {
    throw EConvertError(
        String(u"Format '").append(pattern_).append(u"' invalid or incompatible with argument"));
  }
  [[noreturn]] void RaiseMissing() const {
    throw EConvertError(String(u"No argument for format '").append(pattern_).append(u"'"));
  }

  String out_;
  StringView pattern_;
  StringView rest_;
  std::span<const FormatArg> args_;
  const TFormatSettings& settings_;
  std::size_t next_ = 0;
};

}  // namespace

String Format(StringView pattern, std::span<const FormatArg> args) {
  return Format(pattern, args, FormatSettings());
}

String Format(StringView pattern, std::span<const FormatArg> args,
              const TFormatSettings& settings) {
  return Formatter(pattern, args, settings).Run();
}

}  // namespace zentavo
