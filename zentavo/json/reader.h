// Builds values from JSON text: internal to the JSON classes.
#pragma once

#include <cstdint>
#include <memory>

#include "zentavo/json/cursor.h"
#include "zentavo/json/storage.h"
#include "zentavo/json/text_buffer.h"
#include "zentavo/json/value.h"

namespace zentavo::json_internal {

// Reads one value from a cursor's place on and leaves the cursor behind it. Containers that are not
// complete lie on common stacks of slots, keys and units, each with its part on top, and move into
// a block of their own once their size is known; so nesting takes no call stack. A failed reading
// frees what was built.
class Reader {
 public:
  Reader(Cursor& cursor, std::int32_t max_depth) : cursor_(cursor), max_depth_(max_depth) {}
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader();

  std::unique_ptr<TZAbstractObject> ReadValue();
  // A value that must be an object or an array.
  std::unique_ptr<TZAbstractObject> ReadObject();
  std::unique_ptr<TZAbstractObject> ReadArray();

 private:
  enum class Step : std::uint8_t { kNext, kValue, kBehindKey, kBehindValue, kDone };

  // A container that is being read.
  struct Frame {
    bool is_object;
    bool is_key;  // its text form becomes a key of the object around it
    std::uint32_t first_slot;
    std::uint32_t first_key;
    std::size_t first_unit;
  };

  std::unique_ptr<TZAbstractObject> Follow(Step step);
  std::unique_ptr<TZAbstractObject> ReadContainer(bool is_object, StringView complaint);
  Step TakeValue(char16_t first);
  Step TakeNext();
  Step TakeKey();
  Step TakeElement();
  Step BehindKey();
  Step BehindValue();

  Step Open(bool is_object, bool is_key);
  Step Close();
  std::unique_ptr<TZAbstractObject> Build(const Frame& frame);
  void CutTo(const Frame& frame);
  Slot TakeText(char16_t quote);
  Slot TakeBare();
  Slot TakeBareText();
  void AddKeyOf(const Slot& slot);
  TextRef TextFrom(std::size_t first_unit) const;
  std::unique_ptr<TZAbstractObject> TakeResult();

  Cursor& cursor_;
  std::int32_t max_depth_;
  std::int32_t key_depth_ = 0;
  std::size_t first_unit_ = 0;  // of the innermost frame
  Run<Frame> frames_;
  Run<Slot> slots_;
  Run<TextRef> keys_;
  TextBuffer texts_;
};

}  // namespace zentavo::json_internal
