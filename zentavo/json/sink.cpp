#include "zentavo/json/sink.h"

#include <algorithm>
#include <array>

namespace zentavo::json_internal {

namespace {

// How much larger everything may be than the part of so many units that is written, which is the
// share `done` of it. Such a guess may be far off, so it is not trusted too far.
double GuessFactor(std::size_t units, double done) {
  constexpr double kMargin = 1.125;
  constexpr double kLeast = 1.5;
  const double most = units < 65536 ? 16 : units < 1048576 ? 64 : 8;
  return std::clamp(kMargin / std::max(done, 1e-9), kLeast, most);
}

void Append(String& text, StringView part) {
  text.append(part);
}

void Append(AnsiString& text, StringView part) {
  std::array<char, 1024> bytes;
  while (!part.empty()) {
    const StringView few = part.substr(0, bytes.size());
    std::transform(few.begin(), few.end(), bytes.begin(),
                   [](char16_t unit) { return static_cast<char>(unit); });
    text.append(bytes.data(), few.size());
    part.remove_prefix(few.size());
  }
}

}  // namespace

template <typename Text>
void TextSink<Text>::MakeRoom(std::size_t units, double done) {
  const std::size_t all = text_.size() - start_ + units;
  const double guess = static_cast<double>(all) * GuessFactor(all, done);
  text_.reserve(start_ + static_cast<std::size_t>(guess));
  made_room_ = true;
}

template <typename Text>
void TextSink<Text>::Take(StringView part) {
  Append(text_, part);
}

template <typename Text>
void TextSink<Text>::End(StringView part) {
  Append(text_, part);
  if (made_room_ && text_.capacity() / 2 > text_.size()) text_.shrink_to_fit();
}

template class TextSink<String>;
template class TextSink<AnsiString>;

}  // namespace zentavo::json_internal
