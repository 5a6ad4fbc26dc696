// A string list whose look-ups of whole strings and of names cost the same however long the list.
//
//   TXHashedStringList list;
//   list.Add(u"Path=C:\\Data");
//   list.IndexOfName(u"PATH");  // 0
//
// The tables behind the look-ups are built at the first one and follow strings that are added at
// the end or replaced under the same name; every other change, and every one of a list with an
// OnChange handler, has the next look-up build them anew, which costs the length of the list.
#pragma once

#include <memory>

#include "zentavo/config/line_index.h"
#include "zentavo/config/string_hash.h"
#include "zentavo/framework/string_list.h"

namespace zentavo {

class ZENTAVO_API TXHashedStringList : public TStringList {
 public:
  TXHashedStringList();
  ~TXHashedStringList() override;

  // The lowest index of an equal string, and of a string with that name; -1 when there is none.
  //
  // An OnChange handler that looks up during its notification is answered from the state before the
  // change, where the table stood then; callers rely on that.
  std::int32_t IndexOf(StringView S) const override;
  std::int32_t IndexOfName(StringView Name) const override;
  // The string that IndexOfName finds, a view of it until the list changes. False, and `Line` as it
  // was, when there is none.
  bool FindLine(StringView Name, StringView& Line) const;

 protected:
  void Changing() override;
  void Changed() override;
  void Appended(std::int32_t index) override;
  void Replaced(std::int32_t index, StringView old_text) override;
  void Rearranged() override;

  // `S` as it compares: unchanged when the list is case-sensitive, else in upper case.
  String PrepareString(StringView S) const;

 private:
  KeyCase CurrentCase() const { return CaseSensitive() ? KeyCase::kExact : KeyCase::kIgnored; }
  void UpdateValueHash() const;
  void UpdateNameHash() const;
  void EnterValue(std::int32_t index) const;
  void EnterName(std::int32_t index) const;
  void FreezeValues() const;
  void FreezeNames() const;
  void Invalidate();
  // Sends Changed; returns whether nothing else changed meanwhile, so that a table may follow.
  bool NotifyAlone();

  mutable LineIndex FValueHash;
  mutable LineIndex FNameHash;
  mutable bool FValueHashValid = false;
  mutable bool FNameHashValid = false;
  // The valid tables hold views of the texts, which lie in this storage.
  mutable const void* storage_ = nullptr;
  bool change_in_progress_ = false;
  std::uint32_t change_count_ = 0;

  // From Changing to the end of Changed look-ups go through these, which hold their keys. Made from
  // the tables before the change, else from the list at the first look-up.
  mutable std::unique_ptr<TXStringHash> frozen_values_;
  mutable std::unique_ptr<TXStringHash> frozen_names_;
};

}  // namespace zentavo
