// Writing to data sets without their own event handlers.
//
// Each detaches the handlers for the time of the write and puts them back, also when the write
// raises; what it raises passes to the caller.
#pragma once

#include "zentavo/framework/data_set.h"

namespace zentavo {

// CheckBrowseMode without the handlers before and after posting.
ZENTAVO_API void ZentavoPost(TDataSet& DataSet);

// Writes `Value` without the handlers that validate it and hear of the change, unless the field
// holds it already: then the record stays unmodified.
ZENTAVO_API void ZentavoSetField(TField& Field, const Variant& Value);

// The same with null for a value that equals 0, so that an empty amount and a zero one look the
// same in the data; callers rely on it.
ZENTAVO_API void ZentavoSetFloat(TField& Field, double Value);

}  // namespace zentavo
