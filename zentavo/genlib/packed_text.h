// Values and whole data sets packed into one text.
//
// Each value is followed by '|', each record by '~'; a '|', '~' or '\' in a value stands behind a
// '\'. A record of 1, null and "A|B" is "1||A\|B|~".
//
//   std::int32_t position = 1;
//   ExtractCompressed(u"1||A\\|B|~", position, u'|');  // "1", position 3
//
// Functions that write numbers use the calling thread's format settings; all may be called from any
// thread.
#pragma once

#include <cstdint>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo {

class TDataSet;

// `Value` with '|', '~' and '\' escaped. With `IsFloat` the local decimal separator is written as
// '.'.
ZENTAVO_API String CompressField(StringView Value, bool IsFloat);

// Reads from `Position` up to `Terminator` or the end, and moves `Position` behind it. A '\' makes
// the next unit literal, except with the terminator '~': then it is copied like any other unit, so
// that a whole record can be taken first and its values from it. Callers rely on that; a record
// with an escaped '~' is cut there, so take its values with '|' from the whole text instead. Empty
// at a position outside the text.
ZENTAVO_API String ExtractCompressed(StringView Text, std::int32_t& Position, char16_t Terminator);

// Reads the values of the record at `Position`, unescaped, and moves `Position` behind it; false at
// the end of the text. Unlike taking whole records with '~' it brings every packed value back: a
// '~' ends the record only where a value would begin. A text that was cut ends its last value and
// its last record.
ZENTAVO_API bool ExtractRecord(StringView Text, std::int32_t& Position,
                               std::vector<String>& Values);

// The packed text of a floating-point value in local form: every unit but + - 0..9 E e becomes the
// local decimal separator. `Value` itself when `IsFloat` is false.
ZENTAVO_API String CheckCompressedFloat(StringView Value, bool IsFloat);

// Packs all records, with the controls disabled; the first one is current afterwards. A date-time
// is packed as its date alone, yyyy-mm-dd; floating-point values (not currency or BCD) with '.'.
// Raises what moving the cursor raises.
ZENTAVO_API String CompressDataSet(TDataSet& DataSet);

}  // namespace zentavo
