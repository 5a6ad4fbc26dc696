// Pieces of SQL text: membership conditions over long key lists, further columns of a select list,
// names completed.
//
// Values are inserted as they are given: nothing here quotes, escapes or checks one, so callers
// pass numbers or literals that are quoted already. No list holds more than kMembersPerList
// members.
//
//   MakeInQuery(u"ID", {{1, 2, 3}});         // (ID IN (1,2,3))
//   FormatSQLInValues(u"ID", u"3,1,3,2");    // ((ID IN (3, 1, 2)))
//
// All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <span>

#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"

namespace zentavo {

inline constexpr std::size_t kMembersPerList = 1000;

// The condition that `FieldName` is one of `Values`, lists joined by OR. Without a value the text
// is "(F IN ()", one parenthesis short; callers rely on it.
ZENTAVO_API String MakeInQuery(StringView FieldName, std::span<const std::int32_t> Values);

// The same for a text of values with "," between them, copied unit by unit. Every 1000th comma ends
// a list, also the one at the very end, behind which an empty list then follows.
ZENTAVO_API String MakeInQuery(StringView FieldName, StringView ValuesText);

// The same with repeated values dropped, ", " between values and each list in parentheses of its
// own. A value in double quotes loses them. "()" for the empty text.
ZENTAVO_API String FormatSQLInValues(StringView FieldName, StringView ValuesText);

// Inserts each field of the ";"-separated `FieldList` as "Alias.F," behind the first 7 units of
// `SQL` ("SELECT "), later ones in front of earlier ones. A field that `SQL` has as ",F,", ".F," or
// ".F " anywhere, in that case of letters, is left out. ";" inside "[...]" does not separate.
ZENTAVO_API String AddFldsInSelect(StringView FieldList, StringView Alias, StringView SQL);

// Completes a partly qualified name: when `FullName` has more parts between `Separator`s than
// `Name`, puts what `Name` lacks at its front and returns true. Only the numbers of parts are
// compared: "X.CODE" stays beside "MTRL.CODE".
ZENTAVO_API bool CheckParts(String& Name, StringView FullName, char16_t Separator);

// Replaces `List` by the trimmed pieces of `Text` between `Separator`s that no pair of quotes
// encloses; quotes of one kind toggle, two kinds nest. A `CloseQuote` too many hides the separators
// behind it up to the next `OpenQuote`. Behind a separator at the very end there is no further
// piece.
ZENTAVO_API void ExtractQuoteStings(TStringList& List, StringView Text, char16_t Separator,
                                    char16_t OpenQuote, char16_t CloseQuote);

// `Text` without the repeated ones of its trimmed pieces between `Separator`s outside "[...]", in
// their order. An empty piece counts as one. Letters are compared as they are. Cost: linear, where
// no piece in brackets holds a separator.
ZENTAVO_API String ClearSameStrings(StringView Text, char16_t Separator);

}  // namespace zentavo
