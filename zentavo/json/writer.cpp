#include "zentavo/json/writer.h"

#include <algorithm>
#include <array>

#include "zentavo/json/run.h"
#include "zentavo/json/scalar_text.h"
#include "zentavo/json/unfilled_text.h"
#include "zentavo/json/value_view.h"

namespace zentavo::json_internal {

namespace {

// Appends one value with all that is in it to a text. Containers that are open are kept in a list
// of their own, so that nesting takes no stack. Units go to a room of fixed size first, then into
// the text itself; the functions below write from `out` on and return the end, behind which at
// least kSlack units are free.
class Writer {
 public:
  Writer(String& text, std::optional<Indentation> indentation)
      : text_(text),
        factor_(indentation ? indentation->factor : 0),
        indent_(indentation ? indentation->indent : 0),
        indented_(indentation.has_value()) {}

  void Write(const Slot& value) { Finish(WriteAll(first_room_.data(), value)); }
  void WriteQuoted(StringView text) { Finish(WriteText(first_room_.data(), text)); }

 private:
  struct Open {
    const Slot* first;
    const Slot* next;
    const Slot* end;
    std::int32_t indent;  // of the closing bracket
    bool keyed;
    bool broken;  // one value a line
  };

  static constexpr std::size_t kFirstRoom = 1024;
  static constexpr std::size_t kSlack = 64;

  // Makes room for so many units and the slack.
  char16_t* Room(char16_t* out, std::size_t units) {
    return units + kSlack <= static_cast<std::size_t>(end_ - out) ? out : Grow(out, units);
  }
  char16_t* Grow(char16_t* out, std::size_t units);
  void Finish(const char16_t* out);
  double Done() const;

  std::int32_t ChildIndent(const Open& open) const {
    return open.broken ? open.indent + factor_ : open.indent;
  }
  char16_t* WriteAll(char16_t* out, const Slot& value);
  char16_t* WriteNext(char16_t* out);
  char16_t* OpenContainer(char16_t* out, const Cells& cells, std::int32_t indent);
  char16_t* Close(char16_t* out, const Open& top);
  char16_t* WriteBefore(char16_t* out, Open& top);
  char16_t* WriteText(char16_t* out, StringView text);
  char16_t* WriteLongText(char16_t* out, StringView text);
  char16_t* WriteWord(char16_t* out, StringView word);
  char16_t* WriteScalar(char16_t* out, const Slot& value);
  char16_t* WriteBoxed(char16_t* out, const Slot& value);
  char16_t* BreakLine(char16_t* out, std::int32_t indent);

  String& text_;
  std::size_t old_size_ = text_.size();
  std::int32_t factor_;
  std::int32_t indent_;
  bool indented_;
  Run<Open, 32> open_;
  std::array<char16_t, kFirstRoom> first_room_;
  char16_t* end_ = first_room_.data() + first_room_.size();
  bool in_text_ = false;
};

// How much larger everything may be than the part of so many units that is written, which is the
// share `done` of it. Such a guess may be far off, so it is not trusted too far.
double GuessFactor(std::size_t units, double done) {
  constexpr double kMargin = 1.125;
  constexpr double kLeast = 1.5;
  const double most = units < 65536 ? 16 : units < 1048576 ? 32 : 4;
  return std::clamp(kMargin / std::max(done, 1e-9), kLeast, most);
}

// Moves on into the text, which gets the size that it may have in the end.
char16_t* Writer::Grow(char16_t* out, std::size_t units) {
  const char16_t* start = in_text_ ? text_.data() + old_size_ : first_room_.data();
  const auto done = static_cast<std::size_t>(out - start);
  const auto guess = static_cast<std::size_t>(static_cast<double>(done + units + kSlack) *
                                              GuessFactor(done, Done()));
  ResizeUnfilled(text_, old_size_ + (in_text_ ? done : 0));
  text_.reserve(old_size_ + guess);
  if (!in_text_) text_.append(first_room_.data(), done);
  in_text_ = true;
  ResizeUnfilled(text_, text_.capacity());
  end_ = text_.data() + text_.size();
  return text_.data() + old_size_ + done;
}

void Writer::Finish(const char16_t* out) {
  if (in_text_) {
    ResizeUnfilled(text_, static_cast<std::size_t>(out - text_.data()));
    if (text_.capacity() / 2 > text_.size()) text_.shrink_to_fit();
  } else {
    text_.append(first_room_.data(), static_cast<std::size_t>(out - first_room_.data()));
  }
}

// The share of the value that is written, as if all values of a container were of one size.
double Writer::Done() const {
  double done = 1;
  for (std::size_t index = open_.Size(); index-- > 0;) {
    const Open& open = open_.Begin()[index];
    const auto written = static_cast<double>(open.next - open.first);
    done = (written - 1 + done) / static_cast<double>(open.end - open.first);
  }
  return done;
}

char16_t* Writer::WriteAll(char16_t* out, const Slot& value) {
  const bool is_container = value.kind == SlotKind::kContainer;
  if (!value.IsNested() && !is_container) return WriteScalar(out, value);
  out = OpenContainer(out, is_container ? CellsOf(value.object) : Cells(value), indent_);
  while (!open_.Empty()) out = WriteNext(out);
  return out;
}

inline char16_t* Writer::OpenContainer(char16_t* out, const Cells& cells, std::int32_t indent) {
  *out++ = cells.Keyed() ? u'{' : u'[';
  if (cells.Count() == 0) {
    *out++ = cells.Keyed() ? u'}' : u']';
    return out;
  }
  const bool broken = indented_ && cells.Count() > 1;
  *open_.New() = {cells.First(), cells.First(), cells.End(), indent, cells.Keyed(), broken};
  return out;
}

// Writes the next value of the innermost container, or its end.
inline char16_t* Writer::WriteNext(char16_t* out) {
  out = Room(out, 0);
  Open& top = open_.Last();
  if (top.next == top.end) return Close(out, top);
  out = WriteBefore(out, top);
  const Slot& value = *top.next++;
  if (value.IsNested()) return OpenContainer(out, Cells(value), ChildIndent(top));
  if (value.kind != SlotKind::kContainer) return WriteScalar(out, value);
  return OpenContainer(out, CellsOf(value.object), ChildIndent(top));
}

inline char16_t* Writer::Close(char16_t* out, const Open& top) {
  if (top.broken) out = BreakLine(out, top.indent);
  *out++ = top.keyed ? u'}' : u']';
  open_.RemoveLast();
  return out;
}

// What stands before a value: comma, line break, key.
inline char16_t* Writer::WriteBefore(char16_t* out, Open& top) {
  if (top.next != top.first) *out++ = u',';
  if (top.broken) out = BreakLine(out, ChildIndent(top));
  if (!top.keyed) return out;
  out = WriteText(out, top.next++->Text());
  *out++ = u':';
  if (indented_) *out++ = u' ';
  return out;
}

char16_t* Writer::BreakLine(char16_t* out, std::int32_t indent) {
  constexpr std::int32_t kPart = 1024;
  *out++ = u'\n';
  for (; indent > 0; indent -= kPart) {
    const auto part = static_cast<std::size_t>(std::min(indent, kPart));
    out = std::fill_n(Room(out, part), part, u' ');
  }
  return out;
}

inline char16_t* Writer::WriteText(char16_t* out, StringView text) {
  constexpr std::size_t kShort = 256;
  if (text.size() > kShort) return WriteLongText(out, text);
  out = Room(out, text.size() * kUnitsOfUnit);
  *out++ = u'"';
  out = WriteEscaped(out, text, u'\0');
  *out++ = u'"';
  return out;
}

char16_t* Writer::WriteLongText(char16_t* out, StringView text) {
  constexpr std::size_t kPart = 1024;  // units that room is made for at once
  *out++ = u'"';
  for (std::size_t start = 0; start < text.size(); start += kPart) {
    const StringView part = text.substr(start, kPart);
    out = Room(out, part.size() * kUnitsOfUnit);
    out = WriteEscaped(out, part, start > 0 ? text[start - 1] : u'\0');
  }
  *out++ = u'"';
  return out;
}

char16_t* Writer::WriteWord(char16_t* out, StringView word) {
  return std::copy(word.begin(), word.end(), out);
}

// A value that is no container.
char16_t* Writer::WriteScalar(char16_t* out, const Slot& value) {
  switch (value.kind) {
    case SlotKind::kText: return WriteText(out, value.Text());
    case SlotKind::kInteger: return WriteInteger(out, value.integer);
    case SlotKind::kDouble: return WriteDouble(Room(out, kUnitsOfDouble), value.number);
    case SlotKind::kDecimal: return WriteDecimal(Room(out, kUnitsOfDouble), value);
    case SlotKind::kFalse: return WriteWord(out, u"false");
    case SlotKind::kTrue: return WriteWord(out, u"true");
    case SlotKind::kBoxed: return WriteBoxed(out, value);
    default: return WriteWord(out, u"null");
  }
}

char16_t* Writer::WriteBoxed(char16_t* out, const Slot& value) {
  const ValueView view = ViewOf(value.object);
  if (view.kind == JSONKind::kOther) return WriteText(out, value.object->toString());
  return WriteScalar(out, SlotOf(view));
}

}  // namespace

void AppendQuoted(String& out, StringView text) {
  Writer(out, std::nullopt).WriteQuoted(text);
}

void AppendValue(String& out, const Slot& value, std::optional<Indentation> indentation) {
  Writer(out, indentation).Write(value);
}

AnsiString WrittenUtf8(const Slot& value) {
  String text;
  AppendValue(text, value);
  AnsiString bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [](char16_t unit) { return static_cast<char>(unit); });
  return bytes;
}

}  // namespace zentavo::json_internal
