#include "zentavo/json/writer.h"

#include <algorithm>
#include <vector>

#include "zentavo/json/container.h"

namespace zentavo::json_internal {

namespace {

// Writes one value with all that is in it. Containers that are open are kept in a list of their
// own, so that nesting takes no stack.
class Writer {
 public:
  Writer(TextBuffer& out, std::optional<Indentation> indentation)
      : out_(out),
        factor_(indentation ? indentation->factor : 0),
        indent_(indentation ? indentation->indent : 0),
        indented_(indentation.has_value()) {}

  void Write(const ValueView& value) {
    WriteValue(value, indent_);
    while (!open_.empty()) WriteNext();
  }

 private:
  struct Open {
    const TJSONContainer* container;
    std::uint32_t next;
    std::int32_t indent;        // of the closing bracket
    std::int32_t child_indent;  // of the values
    bool is_object;
    bool broken;  // one value a line
  };

  void WriteNext();
  void CloseTop();
  void WriteKey(StringView key);
  void WriteSlot(const Slot& slot, const Storage& storage, std::int32_t indent);
  void WriteValue(const ValueView& value, std::int32_t indent);
  void OpenContainer(const TJSONContainer& container, std::int32_t indent);
  void BreakLine(std::int32_t indent) {
    out_.Add(u'\n');
    out_.Add(static_cast<std::size_t>(std::max(indent, 0)), u' ');
  }

  TextBuffer& out_;
  std::int32_t factor_;
  std::int32_t indent_;
  bool indented_;
  std::vector<Open> open_;
};

void Writer::OpenContainer(const TJSONContainer& container, std::int32_t indent) {
  const bool is_object = container.Kind() == JSONKind::kObject;
  const std::uint32_t count = Access::Of(container).Count();
  if (count == 0) {
    out_.Add(is_object ? StringView(u"{}") : StringView(u"[]"));
    return;
  }
  out_.Add(is_object ? u'{' : u'[');
  const bool broken = indented_ && count > 1;
  open_.push_back({&container, 0, indent, broken ? indent + factor_ : indent, is_object, broken});
}

// Writes the values of the innermost container up to its end or to a container in it.
void Writer::WriteNext() {
  const std::size_t depth = open_.size();
  const Storage& storage = Access::Of(*open_.back().container);
  while (open_.size() == depth) {
    Open& top = open_.back();
    if (top.next == storage.Count()) return CloseTop();
    const std::uint32_t index = top.next++;
    if (index > 0) out_.Add(u',');
    if (top.broken) BreakLine(top.child_indent);
    if (top.is_object) WriteKey(storage.Key(index));
    WriteSlot(storage.At(index), storage, top.child_indent);
  }
}

void Writer::CloseTop() {
  const Open& top = open_.back();
  if (top.broken) BreakLine(top.indent);
  out_.Add(top.is_object ? u'}' : u']');
  open_.pop_back();
}

void Writer::WriteKey(StringView key) {
  AppendQuoted(out_, key);
  out_.Add(u':');
  if (indented_) out_.Add(u' ');
}

// As WriteValue, but quicker for what most slots hold.
void Writer::WriteSlot(const Slot& slot, const Storage& storage, std::int32_t indent) {
  switch (slot.kind) {
    case SlotKind::kText: return AppendQuoted(out_, storage.Text(slot.text));
    case SlotKind::kInteger: return AppendInteger(out_, slot.integer);
    case SlotKind::kDouble: return AppendDouble(out_, slot.number);
    case SlotKind::kContainer:
      return OpenContainer(static_cast<const TJSONContainer&>(*slot.object), indent);
    default: WriteValue(ViewOf(slot, storage), indent);
  }
}

void Writer::WriteValue(const ValueView& value, std::int32_t indent) {
  switch (value.kind) {
    case JSONKind::kNull: return out_.Add(StringView(u"null"));
    case JSONKind::kBoolean:
      return out_.Add(value.boolean ? StringView(u"true") : StringView(u"false"));
    case JSONKind::kInteger: return AppendInteger(out_, value.integer);
    case JSONKind::kDouble: return AppendDouble(out_, value.number);
    case JSONKind::kString: return AppendQuoted(out_, value.text);
    case JSONKind::kOther: return AppendQuoted(out_, value.object->toString());
    default: OpenContainer(static_cast<const TJSONContainer&>(*value.object), indent);
  }
}

}  // namespace

void AppendValue(TextBuffer& out, const ValueView& value, std::optional<Indentation> indentation) {
  Writer(out, indentation).Write(value);
}

}  // namespace zentavo::json_internal
