#include "zentavo/genlib/access.h"

#include "zentavo/framework/data_set.h"

namespace zentavo {

namespace {

constexpr char16_t kAll = u'A';
constexpr char16_t kBlocked = u'B';
constexpr char16_t kGroup = u'G';
constexpr char16_t kUser = u'U';

// The number being read, and what it is compared with.
class AccessNumber {
 public:
  explicit AccessNumber(std::int32_t user_id, std::int32_t group_id)
      : user_id_(user_id), group_id_(group_id) {}

  void SetKind(char16_t kind) { kind_ = kind; }

  void Take(char16_t unit) {
    if (!IsDigit(unit)) {
      number_ = 0;
    } else if (number_ <= kTooLarge) {
      number_ = number_ * 10 + (unit - u'0');
    }
  }

  bool Grants() const {
    if (number_ == 0) return false;
    return (kind_ == kGroup && number_ == group_id_) || (kind_ == kUser && number_ == user_id_);
  }

 private:
  static constexpr std::int64_t kTooLarge = std::int64_t{1} << 32;

  std::int32_t user_id_;
  std::int32_t group_id_;
  char16_t kind_ = 0;
  std::int64_t number_ = 0;
};

}  // namespace

bool HasAccess(std::int32_t UserId, std::int32_t GroupId, StringView AccessText, bool Default) {
  if (AccessText.empty()) return Default;
  AccessNumber number(UserId, GroupId);
  for (const char16_t unit : AccessText) {
    if (unit == kBlocked) return false;
    if (unit == kAll) return true;
    if ((unit == u',' || unit == u';') && number.Grants()) return true;
    if (unit == kGroup || unit == kUser) number.SetKind(unit);
    number.Take(unit);
  }
  return number.Grants();
}

namespace {

TField* AccessField(const TDataSet& data_set) {
  return data_set.FindField(data_set.Name() + u"ACCESS");
}

}  // namespace

void FilterUserAccess(std::int32_t UserId, std::int32_t GroupId, TDataSet& DataSet) {
  const TField* const access = AccessField(DataSet);
  if (access == nullptr) return;
  DataSet.Last();
  while (!DataSet.Bof()) {
    if (HasAccess(UserId, GroupId, access->AsString(), true)) {
      DataSet.Prior();
    } else {
      DataSet.Delete();
    }
  }
}

void InactiveUserAccess(std::int32_t UserId, std::int32_t GroupId, TDataSet& DataSet) {
  const TField* const access = AccessField(DataSet);
  if (access == nullptr) return;
  TField* const active = DataSet.FindField(u"ISACTIVE");
  if (active == nullptr) {
    FilterUserAccess(UserId, GroupId, DataSet);
    return;
  }
  for (DataSet.First(); !DataSet.Eof(); DataSet.Next()) {
    if (active->AsInteger() != 1) continue;
    DataSet.Edit();
    active->SetAsInteger(HasAccess(UserId, GroupId, access->AsString(), true) ? 1 : 0);
    DataSet.Post();
  }
}

}  // namespace zentavo
