// Conditions over keys of several fields.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// The condition that the ";"-separated `KeyFields`, and behind them each extra field that is not
// empty, together have one of `KeyValues`: "a.b,c.d" for the fields F1;F2 gives
// "(F1=a AND F2=b) OR (F1=c AND F2=d)". Values are separated by the framework's comma rules (blanks
// and double quotes included), their components by "."; parentheses around `KeyValues` are dropped.
//
// Where a value has not as many components as there are fields, its last component goes into an IN
// list of the last field, one list for neighbours that agree in everything before it: with
// F1;F2;F3 the values "a.b,a.c" give "(F1=a AND F3 IN (b,c))". Other components go to the fields in
// order; those that find no field are dropped. Empty when there is no field or no value. May be
// called from any thread.
ZENTAVO_API String ComplexMultiSQL(StringView KeyFields, StringView KeyValues,
                                   StringView ExtraField1 = {}, StringView ExtraField2 = {});

}  // namespace zentavo
