// Where written text goes: internal to the JSON classes.
#pragma once

#include <cstddef>

#include "zentavo/framework/text.h"

namespace zentavo::json_internal {

// Takes a text part by part.
class Sink {
 public:
  Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;
  virtual ~Sink() = default;

  // Whether so many more units have room without moving what was taken.
  virtual bool HasRoom(std::size_t units) const = 0;
  // Makes room for them and all that may follow: with them, the share `done` of the text is there.
  virtual void MakeRoom(std::size_t units, double done) = 0;
  virtual void Take(StringView part) = 0;
  // Takes the last part.
  virtual void End(StringView part) = 0;
};

// Appends to a String, or to an AnsiString what is ASCII.
template <typename Text>
class TextSink final : public Sink {
 public:
  explicit TextSink(Text& text) : text_(text), start_(text.size()) {}

  bool HasRoom(std::size_t units) const override {
    return units <= text_.capacity() - text_.size();
  }
  void MakeRoom(std::size_t units, double done) override;
  void Take(StringView part) override;
  void End(StringView part) override;

 private:
  Text& text_;
  std::size_t start_;
  bool made_room_ = false;
};

extern template class TextSink<String>;
extern template class TextSink<AnsiString>;

}  // namespace zentavo::json_internal
