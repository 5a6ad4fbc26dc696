#include "zentavo/framework/format.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/variant.h"

namespace zentavo {
namespace {

struct Row {
  const char16_t* pattern;
  std::vector<FormatArg> args;
  const char* text;
};

std::string Formatted(const Row& row) {
  TFormatSettings settings;
  try {
    return ToUtf8(Format(row.pattern, row.args, settings));
  } catch (const EConvertError& error) {
    return error.what();
  }
}

TEST(Format, FillsPlaceholders) {
  const String owned = u"y";  // an argument refers to its text
  const Row rows[] = {
      {u"100%%", {}, "100%"},
      {u"%s: %d items, %.2f", {u"name", 3, 2.675}, "name: 3 items, 2.68"},
      {u"[%5d|%-5d|%.5d|%8.5d]", {-42, 42, -42, -42}, "[  -42|42   |-00042|  -00042]"},
      {u"%D %S", {7, "\xC3\xA9"}, "7 \xC3\xA9"},
      {u"%d %u",
       {std::numeric_limits<std::int64_t>::min(), 18446744073709551615ULL},
       "-9223372036854775808 18446744073709551615"},
      {u"%x %.4x %x", {255, 10U, std::int64_t{-1}}, "FF 000A FFFFFFFFFFFFFFFF"},
      {u"%x %u", {-1, -1}, "FFFFFFFF 4294967295"},
      {u"[%5s|%-5s|%.2s|%6.1s]", {u"abc", u"abc", u"abc", u"abc"}, "[  abc|abc  |ab|     a]"},
      {u"%s%s", {u'x', owned}, "xy"},
      {u"%1:s %0:s %s", {u"a", u"b"}, "b a b"},
      {u"[%*d|%-*d|%.*f]", {4, 7, 4, 7, 1, 0.25}, "[   7|7   |0.3]"},
      {u"[%*d]", {-4, 7}, "[7   ]"},
      {u"%f %n %.0n", {1234.5, 1234.5, 1234.5}, "1234.50 1,234.50 1,235"},
      {u"%e %.3e %.1e", {1.5, -0.00012345, 9.9}, "1.50000000000000E+000 -1.23E-004 1E+001"},
      {u"%.2e %e", {0.0, 1e300}, "0.0E+000 1.00000000000000E+300"},
      {u"%g %g %.3g %.3g", {1.5, 1e20, 123456.0, 1234.0}, "1.5 1E20 1.23E5 1.23E3"},
      {u"%m %m %.0m", {1234.5, -1234.5, 0.4}, "$1,234.50 -$1,234.50 $0"},
      {u"%8f|%g",
       {std::numeric_limits<double>::infinity(), 0.1f + 0.0},
       "     INF|0.100000001490116"},
      {u"%d", {}, "No argument for format '%d'"},
      {u"%s %2:s", {u"a", u"b"}, "No argument for format '%s %2:s'"},
      {u"%d", {1.0}, "Format '%d' invalid or incompatible with argument"},
      {u"%f", {1}, "Format '%f' invalid or incompatible with argument"},
      {u"%*d", {u"a", 1}, "Format '%*d' invalid or incompatible with argument"},
      {u"%q", {1}, "Format '%q' invalid or incompatible with argument"},
      {u"%-", {1}, "Format '%-' invalid or incompatible with argument"},
      {u"%65536d", {1}, "Format '%65536d' invalid or incompatible with argument"},
      {u"%99999999999999999999:d",
       {1},
       "Format '%99999999999999999999:d' invalid or incompatible with argument"},
  };
  for (const Row& row : rows) EXPECT_EQ(Formatted(row), row.text) << ToUtf8(row.pattern);
}

TEST(Format, VariantsCountAsTheirKind) {
  const Variant number = 2.5;
  const Variant whole = 7;
  const Variant yes = true;
  const Variant text = u"text";
  const Variant date = Variant::Date(0);
  const Row rows[] = {
      {u"%.1f %d %x %d %s", {number, whole, Variant(-1), yes, text}, "2.5 7 FFFFFFFF -1 text"},
      {u"[%s%s]", {Variant::Null(), Variant()}, "[]"},
      {u"%f", {date}, "Format '%f' invalid or incompatible with argument"},
  };
  for (const Row& row : rows) EXPECT_EQ(Formatted(row), row.text) << ToUtf8(row.pattern);
}

TEST(Format, PointersHaveAllTheirDigits) {
  const int target = 0;
  const String text = Format(u"<%p>", {static_cast<const void*>(&target)});
  EXPECT_EQ(text.size(), 2 + 2 * sizeof(void*));
}

}  // namespace
}  // namespace zentavo
