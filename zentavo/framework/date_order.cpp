#include "zentavo/framework/date_order.h"

#include <algorithm>

namespace zentavo {
namespace {

std::optional<DatePart> PartOf(char16_t letter, std::size_t count) {
  switch (UpCase(letter)) {
    case u'D': return count <= 2 ? std::optional(DatePart::kDay) : std::nullopt;
    case u'M': return DatePart::kMonth;
    case u'Y': return DatePart::kYear;
    default: return std::nullopt;
  }
}

int CurrentYear() {
  return DecodeDate(Date()).year;
}

// The year of the last digits that lies within 50 years behind and 49 ahead of the current one.
int CompleteYear(int year, int digits) {
  if (digits > 2) return year;
  const int first = CurrentYear() - 50;
  const int in_century = first / 100 * 100 + year;
  return in_century < first ? in_century + 100 : in_century;
}

// Whether `rest` began with a text in quotes, which it no longer does.
bool TakeQuoted(StringView& rest) {
  const char16_t quote = rest[0];
  if (quote != u'\'' && quote != u'"') return false;
  const std::size_t close = rest.find(quote, 1);
  rest.remove_prefix(close == StringView::npos ? rest.size() : close + 1);
  return true;
}

// The parts of a format, each once, in the order of their first letters.
class OrderReader {
 public:
  explicit OrderReader(StringView format) : rest_(format) {
    while (!rest_.empty()) Step();
  }

  DateOrder Take() {
    for (const DatePart part : {DatePart::kDay, DatePart::kMonth, DatePart::kYear}) Add(part);
    return order_;
  }

 private:
  void Step() {
    if (TakeQuoted(rest_)) return;
    const char16_t unit = rest_[0];
    const std::size_t count = std::min(rest_.find_first_not_of(unit), rest_.size());
    rest_.remove_prefix(count);
    const auto part = PartOf(unit, count);
    if (!part) return;
    if (*part == DatePart::kMonth && count > 2) order_.month_is_name = true;
    Add(*part);
  }

  void Add(DatePart part) {
    const auto end = order_.parts.begin() + count_;
    if (std::find(order_.parts.begin(), end, part) != end) return;
    order_.parts[static_cast<std::size_t>(count_++)] = part;
  }

  StringView rest_;
  DateOrder order_{};
  int count_ = 0;
};

}  // namespace

DateOrder DateOrderOf(StringView format) {
  return OrderReader(format).Take();
}

StringView FormatTail(StringView format) {
  StringView tail = format;
  for (StringView rest = format; !rest.empty();) {
    if (TakeQuoted(rest)) continue;
    const char16_t letter = UpCase(rest[0]);
    rest.remove_prefix(1);
    if (letter >= u'A' && letter <= u'Z') tail = rest;
  }
  return tail;
}

std::optional<TDateTime> DateOfNumbers(const std::array<DateNumber, 3>& numbers, int count,
                                       const std::array<DatePart, 3>& order) {
  if (count < 2) return std::nullopt;
  DateParts date;
  if (count == 2) date.year = CurrentYear();
  std::size_t used = 0;
  for (const DatePart part : order) {
    if (part == DatePart::kYear && count == 2) continue;
    const DateNumber& number = numbers[used++];
    switch (part) {
      case DatePart::kDay: date.day = number.value; break;
      case DatePart::kMonth: date.month = number.value; break;
      case DatePart::kYear: date.year = CompleteYear(number.value, number.digits); break;
    }
  }
  return TryEncodeDate(date.year, date.month, date.day);
}

}  // namespace zentavo
