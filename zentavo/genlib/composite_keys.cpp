#include "zentavo/genlib/composite_keys.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "zentavo/foundation/helper_text.h"
#include "zentavo/framework/string_list.h"

namespace zentavo {

namespace {

std::vector<String> FieldList(StringView key_fields, StringView extra1, StringView extra2) {
  String list(key_fields);
  for (const StringView extra : {extra1, extra2}) {
    if (!extra.empty()) list.append(u";").append(extra);
  }
  return SplitStr(list, u';');
}

StringView WithoutParentheses(StringView values) {
  if (!values.starts_with(u'(')) return values;
  values.remove_prefix(1);
  if (!values.empty()) values.remove_suffix(1);
  return values;
}

// Writes one condition a value, "(" and ")" around each.
class ConditionWriter {
 public:
  explicit ConditionWriter(std::vector<String> fields) : fields_(std::move(fields)) {}

  void AddValue(StringView value) {
    const std::size_t last_point = value.rfind(u'.');
    const StringView leading =
        last_point == StringView::npos ? StringView() : value.substr(0, last_point);
    const StringView last = value.substr(last_point + 1);
    const std::vector<String> components = SplitStr(value, u'.');
    if (components.size() == fields_.size()) {
      OpenCondition();
      AddTerms(components, fields_.size());
      return;
    }
    if (open_list_ == leading) {
      out_.append(u",").append(last);
      return;
    }
    OpenCondition();
    AddTerms(components, std::min(components.size() - 1, fields_.size()));
    if (components.size() > 1) out_.append(u" AND ");
    out_.append(fields_.back()).append(u" IN (").append(last);
    open_list_ = leading;
  }

  String Text() && {
    CloseCondition();
    return std::move(out_);
  }

 private:
  void CloseCondition() {
    if (!out_.empty()) out_.append(open_list_ ? u"))" : u")");
    open_list_.reset();
  }

  void OpenCondition() {
    const bool first = out_.empty();
    CloseCondition();
    out_.append(first ? u"(" : u" OR (");
  }

  void AddTerms(const std::vector<String>& components, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) out_.append(u" AND ");
      out_.append(fields_[i]).append(u"=").append(components[i]);
    }
  }

  std::vector<String> fields_;
  String out_;
  std::optional<String> open_list_;  // what precedes the last components in the list being written
};

}  // namespace

String ComplexMultiSQL(StringView KeyFields, StringView KeyValues, StringView ExtraField1,
                       StringView ExtraField2) {
  if (KeyFields.empty() || KeyValues.empty()) return {};
  TStringList values;
  values.SetCommaText(WithoutParentheses(KeyValues));
  ConditionWriter writer(FieldList(KeyFields, ExtraField1, ExtraField2));
  for (std::int32_t i = 0; i < values.Count(); ++i) writer.AddValue(values[i]);
  return std::move(writer).Text();
}

}  // namespace zentavo
