#include "zentavo/foundation/str_builder.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "zentavo/foundation/errors.h"
#include "zentavo/foundation/helper_files.h"
#include "zentavo/framework/code_page.h"
#include "zentavo/framework/digits.h"

namespace zentavo {

namespace {

constexpr std::int64_t kMaxCapacity = std::numeric_limits<std::int32_t>::max();
constexpr StringView kLineBreak = u"\r\n";

// A sign, the digits and what writing them may touch behind them.
constexpr std::size_t kUnitsOfInteger = 22;

char16_t* WriteInteger(char16_t* out, std::int64_t value) {
  *out = u'-';
  const auto bits = static_cast<std::uint64_t>(value);
  return digits::WriteWhole(out + (value < 0), value < 0 ? 0 - bits : bits);
}

}  // namespace

void TStrBuilder::FreeMemory::operator()(char16_t* memory) const {
  std::free(memory);
}

TStrBuilder::TStrBuilder(StringView data, std::int32_t step) : FStep(step) {
  SetCapacity(static_cast<std::int64_t>(data.size()));
  Append(data.data(), data.size());
}

TStrBuilder::TStrBuilder(TStrBuilder&& other) noexcept
    : FDataString(std::move(other.FDataString)),
      FLength(std::exchange(other.FLength, 0)),
      FCapacity(std::exchange(other.FCapacity, 0)),
      FStep(other.FStep) {}

TStrBuilder& TStrBuilder::operator=(TStrBuilder&& other) noexcept {
  FDataString = std::move(other.FDataString);
  FLength = std::exchange(other.FLength, 0);
  FCapacity = std::exchange(other.FCapacity, 0);
  FStep = other.FStep;
  return *this;
}

TStrBuilder::~TStrBuilder() = default;

// The room beyond the content is never cleared: growing costs a move at most.
void TStrBuilder::SetCapacity(std::int64_t capacity) {
  if (capacity > kMaxCapacity) ZentavoError(u"Text too long");
  if (capacity == 0) return;
  void* memory =
      std::realloc(FDataString.get(), static_cast<std::size_t>(capacity) * sizeof(char16_t));
  if (memory == nullptr) throw std::bad_alloc();
  FDataString.release();
  FDataString.reset(static_cast<char16_t*>(memory));
  FCapacity = static_cast<std::int32_t>(capacity);
}

void TStrBuilder::CheckLength(std::int64_t N) {
  const std::int64_t need = FLength + N;
  if (need <= FCapacity) return;
  const std::int64_t grow = std::max(FCapacity >> 2, FStep);
  SetCapacity(need > kMaxCapacity ? need : std::min(need + grow, kMaxCapacity));
}

TStrBuilder& TStrBuilder::AddChars(const char16_t* Buffer, std::int32_t Count) {
  if (Count > 0) Append(Buffer, static_cast<std::size_t>(Count));
  return *this;
}

TStrBuilder& TStrBuilder::AddPart(StringView S, std::int32_t Start, std::int32_t Count) {
  return Count < 1 ? *this : AddChars(S.data() + (Start - 1), Count);
}

TStrBuilder& TStrBuilder::AddInteger(std::int64_t Value) {
  if (Room() >= kUnitsOfInteger) {
    FLength = static_cast<std::int32_t>(WriteInteger(FDataString.get() + FLength, Value) -
                                        FDataString.get());
    return *this;
  }
  std::array<char16_t, kUnitsOfInteger> units;
  const char16_t* const end = WriteInteger(units.data(), Value);
  return Add(StringView(units.data(), static_cast<std::size_t>(end - units.data())));
}

TStrBuilder& TStrBuilder::AddLine(StringView S) {
  return Add(S).Add(kLineBreak);
}

TStrBuilder& TStrBuilder::LineAdd(StringView S) {
  if (S.empty()) return *this;
  if (FLength > 0) Add(kLineBreak);
  return Add(S);
}

TStrBuilder& TStrBuilder::AddFmt(StringView Pattern, std::initializer_list<FormatArg> Args) {
  return Add(Format(Pattern, Args));
}

TStrBuilder& TStrBuilder::AddLineFmt(StringView Pattern, std::initializer_list<FormatArg> Args) {
  return AddLine(Format(Pattern, Args));
}

void TStrBuilder::Replace(std::int32_t Index, std::int32_t Count, StringView S) {
  const std::int64_t end = std::int64_t{Index} + Count;
  if (Index < 1 || Count < 0 || end > FLength) return;
  const std::int64_t difference = static_cast<std::int64_t>(S.size()) - Count;
  CheckLength(FLength + difference);
  char16_t* tail = FDataString.get() + (end - 1);
  std::memmove(tail + difference, tail,
               static_cast<std::size_t>(FLength - end + 1) * sizeof(char16_t));
  std::copy(S.begin(), S.end(), FDataString.get() + (Index - 1));
  FLength += static_cast<std::int32_t>(difference);
}

void TStrBuilder::SetValue(StringView S) {
  FLength = 0;
  Add(S);
}

char16_t TStrBuilder::Get(std::int32_t Index) const {
  return Index < 1 || Index > FLength ? u'\0' : FDataString[static_cast<std::size_t>(Index - 1)];
}

void TStrBuilder::Put(std::int32_t Index, char16_t Ch) {
  if (Index >= 1 && Index <= FLength) FDataString[static_cast<std::size_t>(Index - 1)] = Ch;
}

void TStrBuilder::DeleteLast(std::int32_t Count) {
  FLength = std::max(FLength - Count, 0);
}

void TStrBuilder::Clear() {
  FDataString.reset();
  FLength = 0;
  FCapacity = 0;
}

void TStrBuilder::WriteToFile(StringView FileName) const {
  AnsiString bytes = ToSystemAnsi(View());
  bytes.resize(static_cast<std::size_t>(FLength));
  zentavo::WriteToFile(FileName, bytes.data(), FLength, false);
}

}  // namespace zentavo
