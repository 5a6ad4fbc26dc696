#include "zentavo/genlib/html_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

namespace zentavo {

namespace {

using Stops = std::array<std::uint16_t, 3>;

// Eight units in one register.
using Lanes = std::uint16_t __attribute__((vector_size(16)));
using Halves = std::uint64_t __attribute__((vector_size(16)));
constexpr std::size_t kLanes = sizeof(Lanes) / sizeof(char16_t);
static_assert(std::endian::native == std::endian::little);

// All bits of each lane that is one of `stops`.
Halves MarkStops(const char16_t* units, const Stops& stops) {
  Lanes lanes;
  std::memcpy(&lanes, units, sizeof lanes);
  return Halves((lanes == stops[0]) | (lanes == stops[1]) | (lanes == stops[2]));
}

std::size_t FirstMarked(const Halves& marks) {
  constexpr int kLaneBits = 16;
  const int half = marks[0] != 0 ? 0 : 1;
  return static_cast<std::size_t>(half * 64 + std::countr_zero(marks[half])) / kLaneBits;
}

// How many units at the start of `text` are none of `stops`.
std::size_t RunLength(StringView text, const Stops& stops) {
  std::size_t index = 0;
  for (; index + kLanes <= text.size(); index += kLanes) {
    const Halves marks = MarkStops(text.data() + index, stops);
    if ((marks[0] | marks[1]) != 0) return index + FirstMarked(marks);
  }
  while (index < text.size() && std::find(stops.begin(), stops.end(), text[index]) == stops.end()) {
    ++index;
  }
  return index;
}

constexpr bool IsBreak(char16_t unit) {
  return unit == u'\r' || unit == u'\n';
}

// Makes the page out of the text, from its front to its end.
class PageMaker {
 public:
  explicit PageMaker(StringView text) : text_(text) {
    page_.reserve(text.size() + text.size() / 4 + 64);
  }

  String Make() {
    page_ += u"<html>\r\n";
    while (at_ < text_.size()) {
      page_ += u"<p>";
      MakeLine();
      page_ += u"</p>\r\n";
      SkipBreak();
    }
    page_ += u"</html>";
    return std::move(page_);
  }

 private:
  void MakeLine() {
    for (;;) {
      const StringView rest = text_.substr(at_);
      const std::size_t plain = RunLength(rest, {u'\r', u'\n', u'<'});
      page_ += rest.substr(0, plain);
      at_ += plain;
      if (at_ == text_.size() || IsBreak(text_[at_])) return;
      MakeLink();
    }
  }

  void MakeLink() {
    if (!FindLinkEnd()) {
      page_ += text_[at_++];
      return;
    }
    page_ += u"<a href=\"xcmd:";
    page_ += text_.substr(dollar_ + 1, greater_ - dollar_ - 1);
    page_ += u"\">";
    page_ += text_.substr(at_ + 1, dollar_ - at_ - 1);
    page_ += u"</a>";
    at_ = greater_ + 1;
  }

  // Sets the marks of the link that begins here, if it is one. What was found for an earlier '<' is
  // not searched again, so that many of them cost no more than one.
  bool FindLinkEnd() {
    if (dollar_ <= at_) dollar_ = text_.find(u'$', at_);
    if (dollar_ == StringView::npos) return false;
    if (greater_ < dollar_) greater_ = text_.find(u'>', dollar_);
    return greater_ != StringView::npos;
  }

  void SkipBreak() {
    for (int i = 0; i < 2 && at_ < text_.size() && IsBreak(text_[at_]); ++i) ++at_;
  }

  StringView text_;
  std::size_t at_ = 0;
  std::size_t dollar_ = 0;   // the first '$' from some '<' on, and the first '>' behind it
  std::size_t greater_ = 0;  // npos when there is none
  String page_;
};

// A text that is searched for, by its one letter that is rare and has no other form in upper case.
struct Pattern {
  StringView upper;
  std::size_t anchor;  // where the X stands
  StringView replacement;
};

constexpr Pattern kPatterns[] = {
    {u"EXTERNAL", 1, u"_external"},
    {u"SRC=\"XCON.JS\">", 5, u"> var XCon=external;"},
};

// Whether `pattern` stands in `text` with its anchor at `anchor`, not before `from`.
bool Matches(StringView text, const Pattern& pattern, std::size_t from, std::size_t anchor) {
  if (anchor < from + pattern.anchor) return false;
  const StringView found = text.substr(anchor - pattern.anchor, pattern.upper.size());
  return std::equal(found.begin(), found.end(), pattern.upper.begin(), pattern.upper.end(),
                    [](char16_t unit, char16_t upper) { return UpperUnit(unit) == upper; });
}

}  // namespace

String XCHToHTML(StringView Text) {
  return PageMaker(Text).Make();
}

// The patterns cannot overlap, and neither replacement makes the other pattern, except for the
// "external" that the second one brings and that is to stay; so one pass does both steps.
String fixHtmlCode(StringView Html) {
  String fixed;
  fixed.reserve(Html.size() + Html.size() / 16 + 64);
  std::size_t done = 0;  // what stands before is in `fixed`
  std::size_t at = 0;
  for (;;) {
    at += RunLength(Html.substr(at), {u'x', u'X', u'X'});  // the anchors of both patterns
    if (at == Html.size()) break;
    const auto* found =
        std::find_if(std::begin(kPatterns), std::end(kPatterns),
                     [&](const Pattern& pattern) { return Matches(Html, pattern, done, at); });
    if (found == std::end(kPatterns)) {
      ++at;
      continue;
    }
    fixed += Html.substr(done, at - found->anchor - done);
    fixed += found->replacement;
    done = at - found->anchor + found->upper.size();
    at = done;
  }
  fixed += Html.substr(done);
  return fixed;
}

}  // namespace zentavo
