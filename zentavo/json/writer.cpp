#include "zentavo/json/writer.h"

#include <algorithm>
#include <array>

#include "zentavo/json/run.h"
#include "zentavo/json/scalar_text.h"
#include "zentavo/json/value_view.h"

namespace zentavo::json_internal {

namespace {

// The text that a writer fills part by part.
class Target {
 public:
  Target() = default;
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;
  virtual ~Target() = default;
  // `done` tells what share of everything has been written with this part.
  virtual void Add(StringView part, double done) = 0;
};

template <typename Text>
class TextTarget : public Target {
 public:
  explicit TextTarget(Text& text) : text_(text) {}

  void Add(StringView part, double done) override {
    const std::size_t need = text_.size() + part.size();
    if (need > text_.capacity()) text_.reserve(Guess(need, done));
    Append(part);
  }

 private:
  // The size that the text will have. A guess from the first part may be far off, so it is not
  // trusted for much more than that.
  static std::size_t Guess(std::size_t need, double done) {
    constexpr double kMargin = 1.125;
    constexpr double kMost = 16;
    if (done >= 1) return need;
    return static_cast<std::size_t>(static_cast<double>(need) *
                                    std::clamp(kMargin / std::max(done, 1e-9), 1.5, kMost));
  }

  void Append(StringView part) {
    if constexpr (sizeof(typename Text::value_type) == sizeof(char16_t)) {
      text_.append(part);
    } else {
      const std::size_t size = text_.size();
      text_.resize(size + part.size());
      std::transform(part.begin(), part.end(), text_.begin() + static_cast<std::ptrdiff_t>(size),
                     [](char16_t unit) { return static_cast<char>(unit); });
    }
  }

  Text& text_;
};

// Writes one value with all that is in it. Containers that are open are kept in a list of their
// own, so that nesting takes no stack. Units go to a room of fixed size first; the functions below
// write from `out` on and return the end, behind which at least kSlack units are free.
class Writer {
 public:
  Writer(Target& target, std::optional<Indentation> indentation)
      : target_(target),
        factor_(indentation ? indentation->factor : 0),
        indent_(indentation ? indentation->indent : 0),
        indented_(indentation.has_value()) {}

  void Write(const Slot& value) {
    char16_t* out = WriteValue(room_.data(), value, indent_);
    while (!open_.Empty()) out = WriteNext(out);
    target_.Add(Written(out), 1);
  }
  void WriteQuoted(StringView text) { target_.Add(Written(WriteText(room_.data(), text)), 1); }

 private:
  struct Open {
    const Slot* first;
    const Slot* next;
    const Slot* end;
    std::int32_t indent;        // of the closing bracket
    std::int32_t child_indent;  // of the values
    bool keyed;
    bool broken;  // one value a line
  };

  static constexpr std::size_t kRoom = 8192;
  static constexpr std::size_t kSlack = 64;

  StringView Written(const char16_t* out) const {
    return {room_.data(), static_cast<std::size_t>(out - room_.data())};
  }
  // Makes room for so many units and the slack.
  char16_t* Room(char16_t* out, std::size_t units) {
    const auto used = static_cast<std::size_t>(out - room_.data());
    return units + kSlack <= room_.size() - used ? out : Flush(out);
  }
  char16_t* Flush(const char16_t* out) {
    target_.Add(Written(out), Done());
    return room_.data();
  }
  double Done() const;

  char16_t* WriteNext(char16_t* out);
  char16_t* Close(char16_t* out);
  char16_t* WriteKey(char16_t* out, StringView key);
  char16_t* WriteText(char16_t* out, StringView text);
  char16_t* WriteLongText(char16_t* out, StringView text);
  char16_t* WriteWord(char16_t* out, StringView word);
  char16_t* WriteValue(char16_t* out, const Slot& value, std::int32_t indent);
  char16_t* WriteScalar(char16_t* out, const Slot& value);
  char16_t* WriteBoxed(char16_t* out, const Slot& value);
  char16_t* OpenContainer(char16_t* out, const Cells& cells, std::int32_t indent);
  char16_t* BreakLine(char16_t* out, std::int32_t indent);

  Target& target_;
  std::int32_t factor_;
  std::int32_t indent_;
  bool indented_;
  Run<Open, 16> open_;
  std::array<char16_t, kRoom + kSlack> room_;
};

// As if all values of a container were of one size.
double Writer::Done() const {
  double done = 0;
  double share = 1;
  for (const Open* open = open_.Begin(); open != open_.Begin() + open_.Size(); ++open) {
    share /= static_cast<double>(open->end - open->first);
    done += share * static_cast<double>(open->next - open->first - 1);
  }
  return done;
}

char16_t* Writer::OpenContainer(char16_t* out, const Cells& cells, std::int32_t indent) {
  *out++ = cells.Keyed() ? u'{' : u'[';
  if (cells.Count() == 0) {
    *out++ = cells.Keyed() ? u'}' : u']';
    return out;
  }
  const bool broken = indented_ && cells.Count() > 1;
  *open_.New() = {
      cells.First(), cells.First(), cells.End(), indent, broken ? indent + factor_ : indent,
      cells.Keyed(), broken};
  return out;
}

// Writes the values of the innermost container up to its end or to a container in it.
char16_t* Writer::WriteNext(char16_t* out) {
  Open& top = open_.Last();
  const Slot* next = top.next;
  const bool plain = !indented_;
  while (next != top.end) {
    out = Room(out, 0);
    if (next != top.first) *out++ = u',';
    if (top.broken) out = BreakLine(out, top.child_indent);
    if (top.keyed) {
      out = WriteText(out, next++->Text());
      *out++ = u':';
      if (!plain) *out++ = u' ';
    }
    const Slot& value = *next++;
    top.next = next;
    if (value.IsNested()) return OpenContainer(out, Cells(value), top.child_indent);
    if (value.IsOwned()) return WriteValue(out, value, top.child_indent);
    out = WriteScalar(out, value);
  }
  return Close(Room(out, 0));
}

char16_t* Writer::Close(char16_t* out) {
  const Open& top = open_.Last();
  if (top.broken) out = BreakLine(out, top.indent);
  *out++ = top.keyed ? u'}' : u']';
  open_.RemoveLast();
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

char16_t* Writer::WriteText(char16_t* out, StringView text) {
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
    case SlotKind::kFalse: return WriteWord(out, u"false");
    case SlotKind::kTrue: return WriteWord(out, u"true");
    default: return WriteWord(out, u"null");
  }
}

char16_t* Writer::WriteValue(char16_t* out, const Slot& value, std::int32_t indent) {
  out = Room(out, 0);
  if (value.IsNested()) return OpenContainer(out, Cells(value), indent);
  if (value.kind == SlotKind::kContainer) return OpenContainer(out, CellsOf(value.object), indent);
  return value.kind == SlotKind::kBoxed ? WriteBoxed(out, value) : WriteScalar(out, value);
}

char16_t* Writer::WriteBoxed(char16_t* out, const Slot& value) {
  const ValueView view = ViewOf(value.object);
  if (view.kind == JSONKind::kOther) return WriteText(out, value.object->toString());
  return WriteScalar(out, SlotOf(view));
}

}  // namespace

void AppendQuoted(String& out, StringView text) {
  TextTarget target(out);
  Writer(target, std::nullopt).WriteQuoted(text);
}

void AppendValue(String& out, const Slot& value, std::optional<Indentation> indentation) {
  TextTarget target(out);
  Writer(target, indentation).Write(value);
}

AnsiString WrittenUtf8(const Slot& value) {
  AnsiString out;
  TextTarget target(out);
  Writer(target, std::nullopt).Write(value);
  return out;
}

}  // namespace zentavo::json_internal
