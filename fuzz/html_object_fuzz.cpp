// Any bytes as an HTML object's stream: what was read is read again from its own stream, as far as
// the form reads back.
#include <cstdint>
#include <cstdlib>

#include "zentavo/framework/stream.h"
#include "zentavo/textout/html_object.h"

using namespace zentavo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TMemoryStream stream;
  stream.WriteBuffer(data, static_cast<std::int64_t>(size));
  TZentavoHtmlObj object;
  object.LoadFromStream(stream);
  TMemoryStream saved;
  object.SaveToStream(saved);
  TZentavoHtmlObj again;
  again.LoadFromStream(saved);
  if (again.PartsCount() > object.PartsCount()) std::abort();
  for (std::int32_t i = 0; i < again.PartsCount(); ++i) {
    AnsiString name, content, name_again, content_again;
    object.GetPart(i, name, content);
    again.GetPart(i, name_again, content_again);
    if (name != name_again || content != content_again) std::abort();
  }
  return 0;
}
