#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "zentavo/framework/decimal_digits.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/pattern_scan.h"

namespace zentavo {
namespace {

using pattern_scan::TakeQuoted;
using pattern_scan::TakeUnits;

enum class ElementKind { kEnd, kZero, kHash, kPoint, kComma, kExponent, kLiteral };

// One piece of a pattern. The text of a literal is without its quotes; that of an exponent is the
// letter, the sign and the zeros.
struct Element {
  ElementKind kind = ElementKind::kEnd;
  StringView text;
};

bool IsExponentMark(StringView rest) {
  return rest.size() >= 2 && (rest[0] == u'E' || rest[0] == u'e') &&
         (rest[1] == u'+' || rest[1] == u'-');
}

Element NextElement(StringView& rest) {
  if (rest.empty()) return {};
  switch (rest[0]) {
    case u'0': return {ElementKind::kZero, TakeUnits(rest, 1)};
    case u'#': return {ElementKind::kHash, TakeUnits(rest, 1)};
    case u'.': return {ElementKind::kPoint, TakeUnits(rest, 1)};
    case u',': return {ElementKind::kComma, TakeUnits(rest, 1)};
    case u';': return {};
    case u'\'':
    case u'"': return {ElementKind::kLiteral, TakeQuoted(rest)};
    default: break;
  }
  if (!IsExponentMark(rest)) return {ElementKind::kLiteral, TakeUnits(rest, 1)};
  const std::size_t end = std::min(rest.find_first_not_of(u'0', 2), rest.size());
  return {ElementKind::kExponent, TakeUnits(rest, end)};
}

// What a section's placeholders ask for.
struct Layout {
  int before = 0;        // placeholders before the point
  int behind = 0;        // and behind it
  int least_before = 0;  // digits that are printed in any case
  int least_behind = 0;
  bool has_point = false;
  bool thousands = false;
  bool scientific = false;

  void AddDigit(bool always) {
    int& count = has_point ? behind : before;
    ++count;
    if (has_point) {
      if (always) least_behind = behind;
    } else if (always || least_before > 0) {
      ++least_before;
    }
  }
};

Layout Measure(StringView section) {
  Layout layout;
  for (Element element = NextElement(section); element.kind != ElementKind::kEnd;
       element = NextElement(section)) {
    switch (element.kind) {
      case ElementKind::kZero: layout.AddDigit(true); break;
      case ElementKind::kHash: layout.AddDigit(false); break;
      case ElementKind::kPoint: layout.has_point = true; break;
      case ElementKind::kComma: layout.thousands = true; break;
      case ElementKind::kExponent: layout.scientific = true; break;
      default: break;
    }
  }
  return layout;
}

StringView TakeSection(StringView& rest) {
  const StringView all = rest;
  while (NextElement(rest).kind != ElementKind::kEnd) {
  }
  const StringView section = all.substr(0, all.size() - rest.size());
  TakeUnits(rest, 1);
  return section;
}

// The value's digits as a section asks for them, and the exponent that stands apart from them.
struct Rounded {
  DecimalDigits digits;
  int exponent = 0;
};

Rounded RoundFor(const Layout& layout, double value) {
  Rounded rounded{DecimalDigits(value)};
  if (!layout.scientific) {
    rounded.digits.RoundToDecimals(layout.behind);
    return rounded;
  }
  rounded.digits.RoundToSignificant(std::max(layout.before + layout.behind, 1));
  if (!rounded.digits.IsZero()) rounded.exponent = rounded.digits.Point() - layout.before;
  return rounded;
}

// Writes one section.
class SectionWriter {
 public:
  SectionWriter(String& out, const Layout& layout, const Rounded& number,
                const TFormatSettings& settings)
      : out_(out),
        layout_(layout),
        number_(number),
        settings_(settings),
        place_(layout.before),
        first_place_(std::max(PointOfDigits(), layout.least_before)),
        last_place_(-std::max(DecimalsOfDigits(), layout.least_behind)) {}

  void Write(StringView section) {
    for (Element element = NextElement(section); element.kind != ElementKind::kEnd;
         element = NextElement(section)) {
      switch (element.kind) {
        case ElementKind::kZero:
        case ElementKind::kHash: WritePlaceholder(); break;
        case ElementKind::kPoint: WriteLeadingDigits(); break;
        case ElementKind::kExponent: WriteExponent(element.text); break;
        case ElementKind::kLiteral: out_ += element.text; break;
        default: break;
      }
    }
  }

 private:
  int PointOfDigits() const {
    return number_.digits.IsZero() ? 0 : number_.digits.Point() - number_.exponent;
  }
  int DecimalsOfDigits() const {
    return static_cast<int>(number_.digits.Digits().size()) - PointOfDigits();
  }

  // The digits that no placeholder before the point has room for.
  void WriteLeadingDigits() {
    if (leading_done_) return;
    leading_done_ = true;
    for (int place = first_place_ - 1; place >= layout_.before; --place) WriteDigit(place);
  }

  void WritePlaceholder() {
    WriteLeadingDigits();
    --place_;
    if (place_ >= first_place_ || place_ < last_place_) return;
    if (place_ == -1) out_ += settings_.DecimalSeparator;
    WriteDigit(place_);
  }

  void WriteDigit(int place) {
    out_ += static_cast<char16_t>(number_.digits.DigitAt(place + number_.exponent));
    if (layout_.thousands && place > 0 && place % 3 == 0) out_ += settings_.ThousandSeparator;
  }

  void WriteExponent(StringView mark) {
    out_ += mark[0];
    if (number_.exponent < 0) {
      out_ += u'-';
    } else if (mark[1] == u'+') {
      out_ += u'+';
    }
    const String digits = IntToStr(std::abs(number_.exponent));
    const std::size_t wanted = mark.size() - 2;
    if (wanted > digits.size()) out_.append(wanted - digits.size(), u'0');
    out_ += digits;
  }

  String& out_;
  const Layout& layout_;
  const Rounded& number_;
  const TFormatSettings& settings_;
  int place_;        // of the placeholder written last
  int first_place_;  // digits are printed below this place
  int last_place_;   // and down to this one
  bool leading_done_ = false;
};

struct Sections {
  StringView positive, negative, zero;
};

Sections SplitSections(StringView pattern) {
  Sections sections;
  sections.positive = TakeSection(pattern);
  sections.negative = TakeSection(pattern);
  sections.zero = TakeSection(pattern);
  return sections;
}

StringView ChooseSection(const Sections& sections, double value) {
  const StringView chosen = value == 0  ? sections.zero
                            : value < 0 ? sections.negative
                                        : sections.positive;
  return chosen.empty() ? sections.positive : chosen;
}

}  // namespace

String FormatFloat(StringView pattern, double value) {
  return FormatFloat(pattern, value, FormatSettings());
}

String FormatFloat(StringView pattern, double value, const TFormatSettings& settings) {
  const Sections sections = SplitSections(pattern);
  StringView section = ChooseSection(sections, value);
  if (section.empty() || !std::isfinite(value)) return FloatToStr(value, settings);
  Layout layout = Measure(section);
  Rounded rounded = RoundFor(layout, value);
  if (rounded.digits.IsZero() && value != 0) {
    value = 0;
    section = ChooseSection(sections, value);
    layout = Measure(section);
    rounded = RoundFor(layout, value);
  }
  String out;
  // A negative section of its own says how it shows the sign.
  const bool shows_sign = value < 0 && section.data() == sections.positive.data();
  if (shows_sign) out += u'-';
  SectionWriter(out, layout, rounded, settings).Write(section);
  return out;
}

}  // namespace zentavo
