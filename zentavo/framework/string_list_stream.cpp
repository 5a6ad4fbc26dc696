// The list in files and streams.
#include <algorithm>

#include "zentavo/framework/stream.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text_encoding.h"

namespace zentavo {

namespace {

AnsiString ReadRest(TStream& stream) {
  const std::int64_t size = std::max<std::int64_t>(stream.Size() - stream.Position(), 0);
  AnsiString bytes(static_cast<std::size_t>(size), '\0');
  stream.ReadBuffer(bytes.data(), size);
  return bytes;
}

void WriteBytes(TStream& stream, std::string_view bytes) {
  stream.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

}  // namespace

void TStringList::LoadFromStream(TStream& stream) {
  const AnsiString bytes = ReadRest(stream);
  const TEncoding encoding = TEncoding::FromMark(bytes).value_or(TEncoding::System());
  String text;
  encoding.Decode(std::string_view(bytes).substr(encoding.Mark().size()), text);
  SetText(text);
  encoding_ = encoding;
}

void TStringList::SaveToStream(TStream& stream) const {
  WriteBytes(stream, AnsiString(encoding_.Mark()).append(encoding_.Encode(Text())));
}

void TStringList::LoadFromFile(StringView file_name) {
  TFileStream stream(file_name, fmOpenRead | fmShareDenyWrite);
  LoadFromStream(stream);
}

void TStringList::SaveToFile(StringView file_name) const {
  TMemoryStream stream;
  SaveToStream(stream);
  stream.SaveToFile(file_name);
}

}  // namespace zentavo
