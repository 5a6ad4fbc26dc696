// The readable rendering of a value's origin ("(2+3)*4"), written out only when somebody reads it.
#pragma once

#include <cstdint>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo {

class DebugTrace;

// A text that is either held, or still a node of an evaluation's trace. Copying, moving and reading
// turn a node into text, so that a copy never depends on the evaluation it came from.
class ZENTAVO_API DebugText {
 public:
  DebugText() = default;
  DebugText(const DebugText& other) : text_(other.Text()) {}
  DebugText& operator=(const DebugText& other);
  ~DebugText() = default;

  DebugText& operator=(StringView text);
  const String& Text() const;
  operator const String&() const { return Text(); }  // NOLINT(google-explicit-constructor)
  void Clear() {
    trace_ = nullptr;
    if (!text_.empty()) text_.clear();
  }
  bool operator==(StringView text) const { return Text() == text; }

 private:
  friend class DebugTrace;

  mutable String text_;                        // the text, when trace_ is null
  mutable const DebugTrace* trace_ = nullptr;  // the trace that node_ lies in
  mutable std::uint32_t node_ = 0;
};

// What one evaluation did, as nodes that refer to earlier nodes. Texts that were set from outside
// become leaves. The texts of a trace must be read, or dropped, before it is reset.
class DebugTrace {
 public:
  using NodeId = std::uint32_t;
  static constexpr NodeId kEmpty = 0;  // the empty text

  // How far the trace has come, and the return there.
  struct Mark {
    std::size_t nodes = 0;
    std::size_t texts = 0;
  };
  Mark Position() const { return {nodes_.size(), text_count_}; }
  void ReturnTo(Mark mark) {
    nodes_.resize(mark.nodes);
    text_count_ = mark.texts;
  }
  void Reset() { ReturnTo({}); }

  NodeId AddNumber(double value) { return Add({{.number = value}, kEmpty, kEmpty, Kind::kNumber}); }
  NodeId AddText(StringView text);
  // `operator_text` is kept by address: pass literals.
  NodeId AddBinary(NodeId left, const char* operator_text, NodeId right) {
    return Add({{.operator_text = operator_text}, left, right, Kind::kBinary});
  }
  NodeId AddParentheses(NodeId inner) { return Add({{}, inner, kEmpty, Kind::kParentheses}); }
  NodeId AddNegation(NodeId inner) { return Add({{}, inner, kEmpty, Kind::kNegation}); }
  // A node that stands for another one, which may change from run to run.
  NodeId AddAlias() { return Add({{}, kEmpty, kEmpty, Kind::kAlias}); }
  void SetAlias(NodeId node, NodeId other) { nodes_[node - 1].left = other; }
  void SetNumber(NodeId node, double value) { nodes_[node - 1].number = value; }

  // The node behind `text`; a held text becomes a leaf.
  NodeId NodeOf(const DebugText& text) {
    return text.trace_ == this ? text.node_ : AddText(text.Text());
  }
  void Assign(DebugText& text, NodeId node) const {
    text.trace_ = this;
    text.node_ = node;
  }
  void Share(DebugText& to, const DebugText& from) { Assign(to, NodeOf(from)); }

  String Render(NodeId node) const;

 private:
  enum class Kind : std::uint8_t { kNumber, kText, kBinary, kParentheses, kNegation, kAlias };
  struct Node {
    union {
      double number = 0;
      std::size_t text_index;
      const char* operator_text;
    };
    NodeId left = kEmpty;
    NodeId right = kEmpty;
    Kind kind = Kind::kText;
  };

  NodeId Add(const Node& node) {
    nodes_.push_back(node);
    return static_cast<NodeId>(nodes_.size());
  }

  std::vector<Node> nodes_;
  std::vector<String> texts_;  // those from text_count_ on are room to be used again
  std::size_t text_count_ = 0;
};

}  // namespace zentavo
