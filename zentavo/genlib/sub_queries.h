// Statements that carry further select-list items and further clauses inside one text.
//
//   String packed = InjectSubQueries(u"SELECT 1", {{u"T.X"}}, {{u"LEFT JOIN T ON T.ID=A.ID"}});
//   String statement = u"/* SELECT A.ID FROM A";  // the first three units are dropped
//   CheckSubQueries(statement, packed);  // statement: "SELECT A.ID,T.X FROM A LEFT JOIN ..."
//
// All functions may be called from any thread.
#pragma once

#include <span>

#include "zentavo/framework/text.h"

namespace zentavo {

// Returns "#," + names + "#" + sub-queries + "#" + SQL, names with "," and sub-queries with CR LF
// between them. There are as many sub-queries as names: further ones are left out, missing ones
// count as empty.
ZENTAVO_API String InjectSubQueries(StringView SQL, std::span<const String> Names,
                                    std::span<const String> SubQueries);

// Takes a packed text apart: puts the names in front of the first " FROM " of `Statement` that no
// parenthesis encloses (nowhere, when there is none), the sub-queries at its end behind a blank,
// and leaves the SQL in `Packed`. Drops the first three units of `Statement`, whatever they are,
// which callers rely on. Returns false and changes nothing when `Packed` does not begin with '#'.
ZENTAVO_API bool CheckSubQueries(String& Statement, String& Packed);

}  // namespace zentavo
