// The tables of names that formulas know.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zentavo/formula/token.h"
#include "zentavo/framework/string_list.h"

namespace zentavo {

// What a name stands for. Its table owns it.
class ZENTAVO_API TIdentInfo : public TObject {
 public:
  TIdentInfo(TTokenTypes token, std::int32_t id, TResultTypes type, void* ptr)
      : IdentToken(token), IdentType(type), IdentId(id), IdentPtr(ptr) {}

  const TTokenTypes IdentToken;  // the token that the name turns into
  const TResultTypes IdentType;  // the type it yields
  const std::int32_t IdentId;    // a built-in's number, or the host's own id
  // tokPtrVariable: the host's storage, a String, a double or an std::int32_t as IdentType says.
  void* const IdentPtr;
};

// A sorted list of names, compared without regard to case, that owns a TIdentInfo for each. Of two
// entries of one name the first stays. Looking a name up takes constant time.
class ZENTAVO_API TIdentList : public TStringList {
 public:
  TIdentList();

  // Null when the name is not there. The second form takes the name's Hash, for one name and
  // several tables.
  const TIdentInfo* Lookup(StringView name) const { return Lookup(name, Hash(name)); }
  const TIdentInfo* Lookup(StringView name, std::uint32_t hash) const {
    if (slots_.empty()) BuildIndex();
    const std::size_t mask = slot_mask_;
    for (std::size_t at = hash & mask; slots_[at].name != nullptr; at = (at + 1) & mask) {
      const Slot& slot = slots_[at];
      if (slot.hash == hash && (*slot.name == name || SameText(*slot.name, name)))
        return slot.ident;
    }
    return nullptr;
  }
  static std::uint32_t Hash(StringView name) {
    std::uint32_t hash = 2166136261u;
    for (const char16_t unit : name) hash = (hash ^ UpperUnit(unit)) * 16777619u;
    return hash;
  }
  // Whether `address` is that of an entry of this table.
  bool Holds(const void* address) const;
  // Prepares looking up, which else happens at the first Lookup after a change. A table that
  // several threads read must have been prepared.
  void BuildIndex() const;
  // Changes whenever the table does.
  std::uint64_t Version() const { return version_; }

 protected:
  void Changed() override;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    const String* name = nullptr;  // in the list's own entry; null: free
    const TIdentInfo* ident = nullptr;
  };

  mutable std::vector<Slot> slots_;  // open addressing, a power of two; empty when out of date
  mutable std::size_t slot_mask_ = 0;
  std::uint64_t version_ = 0;
};

// Creates a TIdentInfo and adds it under `Name`.
ZENTAVO_API void InsertInList(TIdentList& List, StringView Name, TTokenTypes TokenType,
                              std::int32_t Id, TResultTypes ResultType, void* Ptr = nullptr);
// True with the entry when `List` has `Name`; otherwise `Info` stays as it was.
ZENTAVO_API bool FindInList(const TIdentList& List, StringView Name, const TIdentInfo*& Info);
// Frees every entry, then the list.
ZENTAVO_API void FreeList(std::unique_ptr<TIdentList>& List);

// The built-in functions, the built-in variable and the operator words: one table for the process,
// built once, only read afterwards, and so shared by the parsers of all threads.
ZENTAVO_API const TIdentList& ParserFunctions();

// The unit's start-up, which fills the table, and its shut-down, which frees it. A table that is
// asked for before the start-up is filled then.
void InitializeParserFunctions();
void FinalizeParserFunctions();

}  // namespace zentavo
