#include "zentavo/formula/debug_text.h"

#include <algorithm>

#include "zentavo/framework/number_text.h"

namespace zentavo {

DebugText& DebugText::operator=(const DebugText& other) {
  if (this != &other) {
    text_ = other.Text();
    trace_ = nullptr;
  }
  return *this;
}

DebugText& DebugText::operator=(StringView text) {
  text_ = text;
  trace_ = nullptr;
  return *this;
}

const String& DebugText::Text() const {
  if (trace_ != nullptr) {
    text_ = trace_->Render(node_);
    trace_ = nullptr;
  }
  return text_;
}

DebugTrace::NodeId DebugTrace::AddText(StringView text) {
  if (text.empty()) return kEmpty;
  if (text_count_ == texts_.size()) texts_.emplace_back();
  texts_[text_count_] = text;
  return Add({{.text_index = text_count_++}, kEmpty, kEmpty, Kind::kText});
}

// Walks the nodes with a stack of its own: a chain of operators may be as long as its formula.
String DebugTrace::Render(NodeId root) const {
  struct Step {
    NodeId node;
    const char* text;  // written instead of a node when it is not null
  };
  String out;
  std::vector<Step> steps{{root, nullptr}};
  while (!steps.empty()) {
    const Step step = steps.back();
    steps.pop_back();
    if (step.text != nullptr) {
      for (const char* at = step.text; *at != '\0'; ++at) out += static_cast<char16_t>(*at);
      continue;
    }
    if (step.node == kEmpty) continue;
    const Node& node = nodes_[step.node - 1];
    switch (node.kind) {
      case Kind::kNumber: out += FloatToStr(node.number); break;
      case Kind::kText: out += texts_[node.text_index]; break;
      case Kind::kBinary:
        steps.insert(steps.end(),
                     {{node.right, nullptr}, {kEmpty, node.operator_text}, {node.left, nullptr}});
        break;
      case Kind::kParentheses:
        steps.insert(steps.end(), {{kEmpty, ")"}, {node.left, nullptr}, {kEmpty, "("}});
        break;
      case Kind::kAlias: steps.push_back({node.left, nullptr}); break;
      case Kind::kNegation: steps.insert(steps.end(), {{node.left, nullptr}, {kEmpty, "-"}}); break;
    }
  }
  return out;
}

}  // namespace zentavo
