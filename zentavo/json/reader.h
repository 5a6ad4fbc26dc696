// Builds values from JSON text: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "zentavo/json/arena.h"
#include "zentavo/json/plain_text.h"
#include "zentavo/json/run.h"
#include "zentavo/json/slot.h"
#include "zentavo/json/source.h"
#include "zentavo/json/value.h"

namespace zentavo::json_internal {

// Reads one value from a place in a source on. Texts and the cells of complete containers go to a
// document; those of containers that are still open lie on a common stack, each with its part on
// top, until their number is known. So nesting takes no call stack, and a failed reading leaves
// nothing behind.
template <typename Unit>
class Reader {
 public:
  Reader(const Source<Unit>& source, std::int32_t max_depth);
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader();

  // These leave `here` behind the value.
  std::unique_ptr<TZAbstractObject> ReadValue(const Unit*& here);
  // A value that must be of `kind`, an object or an array.
  std::unique_ptr<TZAbstractObject> ReadContainer(const Unit*& here, JSONKind kind);
  // The rest of a text in quotes.
  String ReadString(const Unit*& here, Unit quote);

 private:
  enum class Step : std::uint8_t { kValue, kMember, kElement, kBehindKey, kBehindValue, kDone };

  // What comes next, and where.
  struct State {
    const Unit* here;
    Step step;
  };

  // A container that is being read.
  struct Frame {
    std::size_t first_cell;
    bool is_object;
    bool is_key;  // its text form becomes a key of the object around it
  };

  // An object that was read.
  struct Ended {
    const Slot* cells;
    std::size_t count;
  };

  std::unique_ptr<TZAbstractObject> Follow(State state, const Unit*& here);
  State TakeMember(const Unit* here);
  State TakeElement(const Unit* here);
  State TakeValue(const Unit* here);
  State TakeValueAt(const Unit* here);  // a significant unit
  State BehindKey(const Unit* here);
  State BehindValue(const Unit* here);

  State Open(const Unit* here, bool is_object, bool is_key);
  State Close(const Unit* here);
  State CloseKey(const Unit* here);
  Slot* TakeCells(std::size_t first, std::size_t count);
  void SetAround();

  const Unit* TakeKey(const Unit* here, Unit quote);
  const Unit* TakeText(const Unit* here, Unit quote, Slot* slot);
  const Unit* TakeHardText(Copied<Unit> copied, Unit quote, Slot* slot);
  const Unit* TakeBare(const Unit* here, Slot* slot);
  const Unit* TakeBareText(const Unit* here, Slot* slot);
  void MakeKey(Slot& slot);
  char16_t* AddUnits(char16_t* out, StringView units, const Unit* here);
  char16_t* MoveText(char16_t* out, std::size_t need, const Unit* here);
  std::unique_ptr<TZAbstractObject> TakeResult();

  const Source<Unit>& source_;
  Document document_;
  Arena& arena_;
  const Unit* last_stop_;
  // Of the innermost container.
  char closer_ = 0;
  Step next_ = Step::kDone;
  std::int32_t max_depth_;
  std::int32_t key_depth_ = 0;
  Run<Frame, 32> frames_;
  // For each depth, the cells of the object that ended there last: most objects have the keys of
  // the one before, and share their texts.
  Run<Ended, 32> ended_;
  Run<Slot, 64> slots_;
};

extern template class Reader<char16_t>;
extern template class Reader<char>;

// The one value that a text is.
template <typename Unit>
std::unique_ptr<TZAbstractObject> ReadWhole(std::basic_string_view<Unit> text);
extern template std::unique_ptr<TZAbstractObject> ReadWhole(std::u16string_view);
extern template std::unique_ptr<TZAbstractObject> ReadWhole(std::string_view);

// The object or array that a text begins with.
template <typename Unit>
std::unique_ptr<TZAbstractObject> ReadFirst(std::basic_string_view<Unit> text, JSONKind kind);
extern template std::unique_ptr<TZAbstractObject> ReadFirst(std::u16string_view, JSONKind);
extern template std::unique_ptr<TZAbstractObject> ReadFirst(std::string_view, JSONKind);

}  // namespace zentavo::json_internal
