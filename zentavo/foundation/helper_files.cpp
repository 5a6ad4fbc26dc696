#include "zentavo/foundation/helper_files.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/file_names.h"

namespace zentavo {

namespace {

constexpr std::uint16_t kSharedReading = fmOpenRead | fmShareDenyNone;

}  // namespace

AnsiString ReadAllTextAnsi(StringView FileName, bool /*Flag*/) {
  TFileStream file(FileName, kSharedReading);
  AnsiString bytes(static_cast<std::size_t>(file.Size()), '\0');
  file.ReadBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  return bytes;
}

String ReadAllText(StringView FileName, bool Flag) {
  return FromSystemAnsi(ReadAllTextAnsi(FileName, Flag));
}

std::unique_ptr<TStringList> ReadAllLines(StringView FileName, bool /*Flag*/) {
  auto lines = std::make_unique<TStringList>();
  lines->LoadFromFile(FileName);
  return lines;
}

std::unique_ptr<TMemoryStream> CreateMemoryStream(StringView FileName, bool /*Flag*/) {
  TFileStream file(FileName, kSharedReading);
  auto memory = std::make_unique<TMemoryStream>();
  memory->LoadFromStream(file);
  return memory;
}

void WriteToFile(StringView FileName, const void* Buffer, std::int32_t Count, bool Append) {
  const bool go_on = Append && FileExists(FileName);
  TFileStream file(FileName, go_on ? fmOpenWrite : fmCreate);
  if (go_on) file.Seek(0, TSeekOrigin::soEnd);
  if (Count > 0) file.WriteBuffer(Buffer, Count);
}

void WriteText(StringView FileName, StringView Text, bool Append) {
  if (Text.empty()) return;
  const AnsiString bytes = ToSystemAnsi(Text);
  WriteToFile(FileName, bytes.data(), static_cast<std::int32_t>(bytes.size()), Append);
}

void AppendLines(StringView FileName, const TStringList& Lines) {
  WriteText(FileName, Lines.Text(), true);
}

AnsiString MemoryToString(const TMemoryStream& Stream) {
  const auto bytes = Stream.Bytes();
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::unique_ptr<TMemoryStream> StringToMemory(std::string_view S) {
  auto memory = std::make_unique<TMemoryStream>();
  memory->WriteBuffer(S.data(), static_cast<std::int64_t>(S.size()));
  memory->SetPosition(0);
  return memory;
}

Variant MemoryToVariant(const TMemoryStream& Stream) {
  const auto bytes = Stream.Bytes();
  if (bytes.empty()) return Variant::Null();
  return Variant::ByteArray(bytes.begin(), bytes.end());
}

AnsiString GetAsAnsiString(const TField& Field) {
  return Field.AsAnsiString();
}

void SetAsAnsiString(TField& Field, std::string_view Value) {
  Field.SetAsAnsiString(Value);
}

}  // namespace zentavo
