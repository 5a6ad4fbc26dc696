// Access texts: which users and user groups may see a record.
//
// "U12,U15;G3" lets users 12 and 15 and every member of group 3 see it. "A" lets all users, "B"
// nobody; 'U' and 'G' say what the numbers behind them are, ',' and ';' end a number, every other
// unit is skipped and drops the number before it. The first entry that grants access ends the
// reading, so a "B" counts only where nothing before it granted. Letters heed case.
//
// The access text of a data set's records is the field named like the data set with "ACCESS" behind
// it.
#pragma once

#include <cstdint>

#include "zentavo/framework/text.h"

namespace zentavo {

class TDataSet;

// Whether `AccessText` lets the user see the record; `Default` for the empty text. Number 0, and
// numbers beyond 32 bits, never match; neither do numbers before any 'G' or 'U'. May be called from
// any thread.
ZENTAVO_API bool HasAccess(std::int32_t UserId, std::int32_t GroupId, StringView AccessText,
                           bool Default);

// Deletes the records that the user may not see; those without an access text stay. Does nothing
// without an access field. Raises what deleting raises.
ZENTAVO_API void FilterUserAccess(std::int32_t UserId, std::int32_t GroupId, TDataSet& DataSet);

// Sets the field ISACTIVE to 0 in the active records (1) that the user may not see. Other records
// stay as they are. Without an access field nothing happens, without ISACTIVE what
// FilterUserAccess does. Raises what Edit and Post raise.
ZENTAVO_API void InactiveUserAccess(std::int32_t UserId, std::int32_t GroupId, TDataSet& DataSet);

}  // namespace zentavo
