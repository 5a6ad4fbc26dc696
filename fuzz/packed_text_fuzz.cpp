// Packed records, masked texts and the SQL texts that carry sub-queries, from any bytes.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "zentavo/foundation/errors.h"
#include "zentavo/genlib/access.h"
#include "zentavo/genlib/composite_keys.h"
#include "zentavo/genlib/masking.h"
#include "zentavo/genlib/output_text.h"
#include "zentavo/genlib/packed_text.h"
#include "zentavo/genlib/sql_text.h"
#include "zentavo/genlib/sub_queries.h"

using namespace zentavo;

namespace {

void ReadRecords(const String& text) {
  std::int32_t position = 1;
  std::vector<String> values;
  String again;
  while (ExtractRecord(text, position, values)) {
    for (const String& value : values) again += CompressField(value, false) + u'|';
    again += u'~';
  }
  // What was read and written is read as the same records.
  std::int32_t second = 1;
  String third;
  while (ExtractRecord(again, second, values)) {
    for (const String& value : values) third += CompressField(value, false) + u'|';
    third += u'~';
  }
  if (again != third) std::abort();
}

void Wrap(const String& text) {
  std::int32_t position = 1;
  while (position <= static_cast<std::int32_t>(text.size())) {
    const std::int32_t before = position;
    ExtractProtasis(text, 7, position);
    if (position <= before) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const String text = FromUtf8(bytes);
  ReadRecords(text);
  Wrap(text);
  HasAccess(5, 3, text, true);
  ComplexMultiSQL(u"A;B", text);
  FormatSQLInValues(u"F", text);
  String statement = text;
  String packed = text;
  CheckSubQueries(statement, packed);
  if (DecodeStr(EncodeStr(bytes)) != bytes) std::abort();
  try {
    DecodeStr(bytes);
  } catch (const EZentavoError&) {
    return 0;
  }
  return 0;
}
