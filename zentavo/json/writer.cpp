#include "zentavo/json/writer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "zentavo/json/escapes.h"
#include "zentavo/json/number_form.h"
#include "zentavo/json/run.h"
#include "zentavo/json/short_key.h"
#include "zentavo/json/sink.h"
#include "zentavo/json/value_view.h"

namespace zentavo::json_internal {

namespace {

constexpr std::size_t kCacheLine = 64;  // bytes, as those that follow
// How far before the cells that are written now memory is asked for. A chain of containers, each
// of which is the only value of the one before, is written faster than memory comes.
constexpr std::size_t kAhead = 256;
constexpr std::size_t kAheadInChain = 1024;

// Asks for memory that may be read soon. Any address will do.
void Expect(std::uintptr_t address) {
  __builtin_prefetch(reinterpret_cast<const void*>(address));  // NOLINT(performance-no-int-to-ptr)
}

// Asks for the first cells of a value that is written later, and of the chain that may begin there.
inline void ExpectCells(const Slot& value) {
  const auto first = reinterpret_cast<std::uintptr_t>(value.cells);
  Expect(first);
  if (value.size != 1 || !value.IsNested()) return;
  for (std::size_t ahead = kCacheLine; ahead < kAheadInChain; ahead += kCacheLine) {
    Expect(first - ahead);
  }
}

inline char16_t* WriteShortText(char16_t* out, StringView text) {
  *out++ = u'"';
  out = WriteEscaped(out, text);
  *out++ = u'"';
  return out;
}

// Writes one value with all that is in it. The functions below write from `out` on, in a room that
// is emptied into the sink when less than kSlack units are left, and return the end.
//
// Containers that are open are kept in lists of their own, so that nesting takes no stack: their
// closing brackets, and those containers that go on behind the one that is being written. A comma
// follows each value of a container; its closing bracket takes the place of the last one.
class Writer {
 public:
  Writer(Sink& sink, std::optional<Indentation> indentation)
      : sink_(sink),
        factor_(indentation ? indentation->factor : 0),
        indent_(indentation ? indentation->indent : 0),
        indented_(indentation.has_value()) {}

  void Write(const Slot& value) { Finish(WriteAll(room_.data(), value)); }
  void WriteQuoted(StringView text) { Finish(WriteText(room_.data(), text)); }

 private:
  // A container, of whose cells those from `next` on are not written yet.
  struct Open {
    const Slot* next;
    const Slot* end;
    const Slot* first;
    std::size_t closers;  // that stay when it ends
    std::int32_t indent;  // of its closing bracket
    bool keyed;
    bool broken;  // one value a line
  };

  static constexpr std::size_t kRoom = 4096;  // of 8 KB, which stay in the processor's cache
  // Units that are appended at once. For more than 2 KB C libraries take the processor's
  // instruction for long blocks where it claims to be fast, which costs several times as much on
  // some.
  static constexpr std::size_t kPiece = 1024;
  static constexpr std::size_t kShort = 128;  // units of a text that is written at once
  static constexpr std::int32_t kFewBlanks = 64;
  // For a key and a value that are short, with line breaks, and for what is written too far.
  static constexpr std::size_t kSlack = 2 * (kShort * kUnitsOfUnit + kFewBlanks + 8) + 16;

  char16_t* Room(char16_t* out) { return out <= last_ ? out : Empty(out); }
  char16_t* Empty(char16_t* out);
  void Finish(const char16_t* out);
  double Done() const;

  char16_t* WriteAll(char16_t* out, const Slot& value);
  template <bool kIndented>
  char16_t* WriteTree(char16_t* out, const Slot& tree);
  template <bool kIndented>
  char16_t* WriteUpToNested(char16_t* out, Open& here, const Slot*& nested);
  template <bool kIndented>
  char16_t* WriteKey(char16_t* out, const Open& here, const Slot& key);
  template <bool kIndented>
  static char16_t* WriteShortMember(char16_t* out, StringView key);
  template <bool kIndented>
  char16_t* Descend(char16_t* out, const Slot*& nested);
  template <bool kIndented>
  char16_t* Enter(char16_t* out, Open& here, const Slot& container, std::int32_t indent);
  void Leave(Open& here);
  char16_t* Close(char16_t* out, const Open& here);
  char16_t* WriteText(char16_t* out, StringView text);
  char16_t* WriteLongText(char16_t* out, StringView text);
  char16_t* WriteScalar(char16_t* out, const Slot& value);
  char16_t* WriteRare(char16_t* out, const Slot& value);
  char16_t* WriteBoxed(char16_t* out, const Slot& value);
  char16_t* BreakLine(char16_t* out, std::int32_t indent);

  Sink& sink_;
  std::int32_t factor_;
  std::int32_t indent_;
  bool indented_;
  Open here_{};  // the innermost container, when the room was emptied last
  Run<Open, 32> open_;
  Run<char16_t, 64> closers_;
  std::array<char16_t, kRoom> room_;
  char16_t* last_ = room_.data() + kRoom - kSlack;
};

// Keeps the last unit, which may be a comma that does not stay.
char16_t* Writer::Empty(char16_t* out) {
  StringView part(room_.data(), static_cast<std::size_t>(out - room_.data()) - 1);
  if (!sink_.HasRoom(part.size())) sink_.MakeRoom(part.size(), Done());
  for (; !part.empty(); part = part.substr(std::min(part.size(), kPiece))) {
    sink_.Take(part.substr(0, kPiece));
  }
  room_[0] = out[-1];
  return room_.data() + 1;
}

void Writer::Finish(const char16_t* out) {
  sink_.End(StringView(room_.data(), static_cast<std::size_t>(out - room_.data())));
}

// The share of the value that is written, below 1, as if all values of a container were of one
// size.
double Writer::Done() const {
  double done = 0.5;
  const auto widen = [&](const Open& open) {
    const auto written = static_cast<double>(open.next - open.first);
    const auto all = static_cast<double>(open.end - open.first);
    if (all > 0) done = (written - 1 + done) / all;
  };
  widen(here_);
  for (std::size_t index = open_.Size(); index-- > 0;) widen(open_.Begin()[index]);
  return done;
}

char16_t* Writer::WriteAll(char16_t* out, const Slot& value) {
  if (!value.IsContainer()) return WriteScalar(out, value);
  return indented_ ? WriteTree<true>(out, value) : WriteTree<false>(out, value);
}

// Begins a container, which `here` becomes. Containers that were read lie behind those in them.
template <bool kIndented>
inline char16_t* Writer::Enter(char16_t* out, Open& here, const Slot& container,
                               std::int32_t indent) {
  const Cells cells =
      container.kind == SlotKind::kContainer ? CellsOf(container.object) : Cells(container);
  Expect(reinterpret_cast<std::uintptr_t>(cells.First()) - kAhead);
  here.next = cells.First();
  here.first = cells.First();
  here.end = cells.End();
  here.keyed = cells.Keyed();
  if constexpr (kIndented) {
    here.indent = indent;
    here.broken = cells.Count() > 1;
  }
  *out++ = cells.Keyed() ? u'{' : u'[';
  closers_.Add(cells.Keyed() ? u'}' : u']');
  return cells.Count() == 0 ? out + 1 : out;  // as if behind a comma
}

// Keeps a container that goes on, or breaks the line before it ends, while one in it is written.
inline void Writer::Leave(Open& here) {
  if (here.next != here.end) {
    ExpectCells(*here.next);
  } else if (!here.broken) {
    return;
  }
  open_.Add(here);
  here.closers = closers_.Size();
}

// Begins the containers from `nested` on that hold nothing but a container, one in another, of
// which nothing but the closing brackets has to be kept. `nested` becomes the first other one.
template <bool kIndented>
inline char16_t* Writer::Descend(char16_t* out, const Slot*& nested) {
  while (nested->size == 1 && nested->IsNested() && out <= last_) {
    const Slot* cells = nested->cells;
    Expect(reinterpret_cast<std::uintptr_t>(cells) - kAheadInChain);
    if (nested->kind == SlotKind::kObject) {
      if (cells->kind != SlotKind::kShortKey || !cells[1].IsContainer()) break;
      *out++ = u'{';
      out = WriteShortMember<kIndented>(out, cells->Text());
      closers_.Add(u'}');
      nested = cells + 1;
    } else {
      if (!cells->IsContainer()) break;
      *out++ = u'[';
      closers_.Add(u']');
      nested = cells;
    }
  }
  return out;
}

template <bool kIndented>
char16_t* Writer::WriteTree(char16_t* out, const Slot& tree) {
  Open here{};
  out = Enter<kIndented>(out, here, tree, indent_);
  for (;;) {
    const Slot* nested = nullptr;
    out = WriteUpToNested<kIndented>(out, here, nested);
    if (nested != nullptr) {
      const std::int32_t indent = kIndented && here.broken ? here.indent + factor_ : here.indent;
      Leave(here);
      out = Descend<kIndented>(out, nested);
      out = Enter<kIndented>(out, here, *nested, indent);
      continue;
    }
    out = Close(out, here);
    if (open_.Empty()) return out;
    *out++ = u',';
    here = open_.Last();
    open_.RemoveLast();
  }
}

// A short key, up to its value.
template <bool kIndented>
inline char16_t* Writer::WriteShortMember(char16_t* out, StringView key) {
  constexpr StringView kBehind = kIndented ? u"\": " : u"\":";
  *out++ = u'"';
  out = WriteShortKey(out, key);
  return std::copy(kBehind.begin(), kBehind.end(), out);
}

// Writes the values of a container up to its end or to a container, which `nested` is then.
template <bool kIndented>
inline char16_t* Writer::WriteUpToNested(char16_t* out, Open& here, const Slot*& nested) {
  while (here.next != here.end) {
    if (out > last_) [[unlikely]] {
      here_ = here;
      out = Empty(out);
    }
    if constexpr (kIndented) {
      if (here.broken) out = BreakLine(out, here.indent + factor_);
    }
    if (here.keyed) out = WriteKey<kIndented>(out, here, *here.next++);
    const Slot& value = *here.next++;
    if (value.IsContainer()) {
      nested = &value;
      return out;
    }
    if (value.kind == SlotKind::kText && value.size > kShort) here_ = here;
    out = WriteScalar(out, value);
    *out++ = u',';
  }
  return out;
}

template <bool kIndented>
inline char16_t* Writer::WriteKey(char16_t* out, const Open& here, const Slot& key) {
  if (key.kind == SlotKind::kShortKey) [[likely]] {
    return WriteShortMember<kIndented>(out, key.Text());
  }
  if (key.size > kShort) {
    here_ = here;
    out = WriteLongText(out, key.Text());
  } else {
    out = WriteShortText(out, key.Text());
  }
  *out++ = u':';
  if constexpr (kIndented) *out++ = u' ';
  return out;
}

// Ends a container, and with it those that it is the last value of.
inline char16_t* Writer::Close(char16_t* out, const Open& here) {
  constexpr std::size_t kFew = 256;
  --out;
  if (here.broken) out = BreakLine(out, here.indent);
  while (closers_.Size() - here.closers > kFew) {
    out = std::copy_n(std::make_reverse_iterator(closers_.End()), kFew, out);
    closers_.CutTo(closers_.Size() - kFew);
    out = Room(out);
  }
  out = std::reverse_copy(closers_.Begin() + here.closers, closers_.End(), out);
  closers_.CutTo(here.closers);
  return out;
}

char16_t* Writer::BreakLine(char16_t* out, std::int32_t indent) {
  *out++ = u'\n';
  for (; indent > kFewBlanks; indent -= kFewBlanks) {
    out = Room(std::fill_n(out, kFewBlanks, u' '));
  }
  return std::fill_n(out, std::max(indent, 0), u' ');
}

char16_t* Writer::WriteText(char16_t* out, StringView text) {
  return text.size() > kShort ? WriteLongText(out, text) : WriteShortText(out, text);
}

// In parts, none of which ends between a '<' and its '/'.
char16_t* Writer::WriteLongText(char16_t* out, StringView text) {
  *out++ = u'"';
  while (!text.empty()) {
    std::size_t size = std::min(text.size(), kShort);
    if (size < text.size() && text[size - 1] == u'<' && text[size] == u'/') ++size;
    out = Room(WriteEscaped(out, text.substr(0, size)));
    text.remove_prefix(size);
  }
  *out++ = u'"';
  return out;
}

char16_t* WriteWord(char16_t* out, StringView word) {
  return std::copy(word.begin(), word.end(), out);
}

// A value that is no container.
inline char16_t* Writer::WriteScalar(char16_t* out, const Slot& value) {
  if (value.kind == SlotKind::kText) return WriteText(out, value.Text());
  if (value.kind == SlotKind::kInteger) return WriteInteger(out, value.integer);
  if (value.kind == SlotKind::kDecimal) return WriteDecimal(out, value);
  return WriteRare(out, value);
}

char16_t* Writer::WriteRare(char16_t* out, const Slot& value) {
  switch (value.kind) {
    case SlotKind::kDouble: return WriteDouble(out, value.number);
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
  TextSink<String> sink(out);
  Writer(sink, std::nullopt).WriteQuoted(text);
}

void AppendValue(String& out, const Slot& value, std::optional<Indentation> indentation) {
  TextSink<String> sink(out);
  Writer(sink, indentation).Write(value);
}

AnsiString WrittenUtf8(const Slot& value) {
  AnsiString bytes;
  TextSink<AnsiString> sink(bytes);
  Writer(sink, std::nullopt).Write(value);
  return bytes;
}

}  // namespace zentavo::json_internal
