#include "zentavo/textout/html_object.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/field.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"

namespace zentavo {

namespace {

constexpr std::int64_t kLengthBytes = 4;

AnsiString KeptName(std::string_view name) {
  return AnsiString(name.substr(0, name.size() & 0xFF));
}

AnsiString CheckedContent(std::string_view content) {
  if (content.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw ERangeError(u"Range check error");
  }
  return AnsiString(content);
}

void WriteLength(TStream& stream, std::uint32_t length) {
  std::array<unsigned char, kLengthBytes> bytes;
  for (unsigned char& byte : bytes) {
    byte = static_cast<unsigned char>(length & 0xFF);
    length >>= 8;
  }
  stream.WriteBuffer(bytes.data(), kLengthBytes);
}

// The next `count` bytes, nothing when there are fewer. The caller bounds `count`.
std::optional<AnsiString> ReadBytes(TStream& stream, std::int64_t count) {
  AnsiString bytes(static_cast<std::size_t>(count), '\0');
  if (stream.Read(bytes.data(), count) != count) return std::nullopt;
  return bytes;
}

std::optional<std::int32_t> ReadLength(TStream& stream) {
  const std::optional<AnsiString> bytes = ReadBytes(stream, kLengthBytes);
  if (!bytes) return std::nullopt;
  std::uint32_t length = 0;
  for (std::size_t i = bytes->size(); i-- > 0;) {
    length = length << 8 | static_cast<unsigned char>((*bytes)[i]);
  }
  return static_cast<std::int32_t>(length);
}

std::optional<AnsiString> ReadName(TStream& stream) {
  const std::optional<AnsiString> length = ReadBytes(stream, 1);
  if (!length) return std::nullopt;
  return ReadBytes(stream, static_cast<unsigned char>(length->front()));
}

}  // namespace

TZentavoHtmlObj::~TZentavoHtmlObj() = default;

void TZentavoHtmlObj::CheckIndex(std::int32_t index) const {
  if (index >= 0 && index < PartsCount()) return;
  throw EListError(u"List index out of bounds (" + IntToStr(index) + u")");
}

void TZentavoHtmlObj::AddPart(std::string_view Name, std::string_view Content) {
  AnsiString content = CheckedContent(Content);
  FNames.push_back(KeptName(Name));
  FContents.push_back(std::move(content));
}

void TZentavoHtmlObj::SetPart(std::int32_t Index, std::string_view Name, std::string_view Content) {
  if (Index >= PartsCount()) return;
  CheckIndex(Index);
  AnsiString content = CheckedContent(Content);
  FNames[static_cast<std::size_t>(Index)] = KeptName(Name);
  FContents[static_cast<std::size_t>(Index)] = std::move(content);
}

void TZentavoHtmlObj::DeletePart(std::int32_t Index) {
  CheckIndex(Index);
  FNames.erase(FNames.begin() + Index);
  FContents.erase(FContents.begin() + Index);
}

void TZentavoHtmlObj::GetPart(std::int32_t Index, AnsiString& Name, AnsiString& Content) const {
  if (Index >= PartsCount()) {
    Name.clear();
    Content.clear();
    return;
  }
  CheckIndex(Index);
  Name = FNames[static_cast<std::size_t>(Index)];
  Content = FContents[static_cast<std::size_t>(Index)];
}

std::int32_t TZentavoHtmlObj::GetPartByName(std::string_view Name) const {
  const auto found = std::find(FNames.begin(), FNames.end(), Name);
  return found == FNames.end() ? -1 : static_cast<std::int32_t>(found - FNames.begin());
}

void TZentavoHtmlObj::ClearParts() {
  FNames.clear();
  FContents.clear();
}

void TZentavoHtmlObj::SaveToStream(TStream& Stream) const {
  std::uint32_t total = 0;  // beyond 32 bits it wraps
  for (const auto* list : {&FNames, &FContents}) {
    for (const AnsiString& bytes : *list) total += static_cast<std::uint32_t>(bytes.size());
  }
  Stream.SetPosition(0);
  WriteLength(Stream, total);
  for (std::size_t i = 0; i < FNames.size(); ++i) {
    const auto name_length = static_cast<unsigned char>(FNames[i].size());
    Stream.WriteBuffer(&name_length, 1);
    Stream.WriteBuffer(FNames[i].data(), name_length);
    WriteLength(Stream, static_cast<std::uint32_t>(FContents[i].size()));
    Stream.WriteBuffer(FContents[i].data(), static_cast<std::int64_t>(FContents[i].size()));
  }
}

bool TZentavoHtmlObj::LoadPart(TStream& stream, std::int64_t stream_size) {
  std::optional<AnsiString> name = ReadName(stream);
  if (!name) return false;
  const std::optional<std::int32_t> length = ReadLength(stream);
  if (!length || *length < 0 || *length > stream_size) return false;
  std::optional<AnsiString> content = ReadBytes(stream, *length);
  if (!content) return false;
  FNames.push_back(std::move(*name));
  FContents.push_back(std::move(*content));
  return true;
}

void TZentavoHtmlObj::LoadFromStream(TStream& Stream) {
  ClearParts();
  const std::int64_t size = Stream.Size();
  if (size < kLengthBytes) return;
  Stream.SetPosition(0);
  const std::optional<std::int32_t> total = ReadLength(Stream);
  if (!total) return;
  while (Stream.Position() < *total) {
    if (!LoadPart(Stream, size)) return;
  }
}

void TZentavoHtmlObj::SaveDocToBlob(TField& AFld) const {
  TMemoryStream stream;
  SaveToStream(stream);
  stream.SetPosition(0);
  AFld.LoadFromStream(stream);
}

}  // namespace zentavo
