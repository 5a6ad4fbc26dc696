// Scanning of script texts: names, parameter lists, bracketed and quoted blocks, comments,
// literals.
//
// The conventions of script texts:
//   white space      TAB, LF, CR and blank, nothing else
//   string           between single quotes; the next quote always ends it
//   name             a letter A-Z, a-z or '_', then letters, digits and '_'
//   parameter list   ( parameter, parameter, ... ); quoted, parenthesised and bracketed parts of a
//                    parameter count as wholes; one that starts with '[' is a bracketed block
//   comment          from // to the next CR
//
//   std::int32_t position = 4;
//   TStringList parameters;
//   GetFunctionParameters(u"Max(a, Min(b, c))", position, parameters);  // "a", "Min(b, c)"
//
// Positions count from 1; one below 1 counts 1. A scanner leaves its position on the first unit
// that it did not consume, and where it was when it raises. All functions may be called from any
// thread.
#pragma once

#include <cstdint>

#include "zentavo/expr/script_messages.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

// Blocks inside each other beyond this raise EScriptException "Blocks nested too deeply".
inline constexpr std::int32_t kMaxBlockNesting = 1000;

enum TStringTokenType : std::uint8_t {
  ttNone,
  ttName,
  ttSymbol,
  ttInteger,
  ttFloat,
  ttString,
  ttRemarks,
  ttEndOfTokens,
};

ZENTAVO_API void SkipSpaces(StringView Text, std::int32_t& Position);
// From an opening quote to the next one, or to length + 1 when there is none.
ZENTAVO_API void SkipQuotes(StringView Text, std::int32_t& Position);
// From an opening character to the matching close character; quoted strings hide both. Raises
// EScriptException "Expected ''%s''" with the close character (callers know the doubled quotes)
// when the text ends without one. A text whose last character is the close character counts as
// closed, however many blocks are open there.
ZENTAVO_API void SkipBlock(StringView Text, std::int32_t& Position, char16_t OpenChar,
                           char16_t CloseChar);
// The same, returning what stands between the two characters.
ZENTAVO_API String GetBlock(StringView Text, std::int32_t& Position, char16_t OpenChar,
                            char16_t CloseChar);
// Skips white space and reads the name there; empty when none starts there.
ZENTAVO_API String GetName(StringView Text, std::int32_t& Position);

// One parameter: the text up to the first ')', ',' or ']' outside of its parts, trimmed, or the
// inside of a bracketed block as it stands. Leaves the position on the delimiter. Raises as
// SkipBlock does.
ZENTAVO_API String GetParameter(StringView Text, std::int32_t& Position);
// Fills `Parameters` from the list that starts at the position, if one does, and moves behind it.
// "()" has one empty parameter. Raises EScriptException "Expected '',' or ')''" for text behind a
// parameter and "Expected '')''" for a list without an end; `Parameters` then holds those read.
ZENTAVO_API void GetFunctionParameters(StringView Text, std::int32_t& Position,
                                       TStringList& Parameters);
// Their number; 0 when no list starts there. Raises the same.
ZENTAVO_API std::int32_t CountFunctionParameters(StringView Text, std::int32_t Position);

// The object attached to `Name`, which stays the list's. Without such an entry: null, or with
// `RaiseIfMissing` the library's base error "Section '%s' not found !".
ZENTAVO_API TObject* GetSection(const TStringList& Sections, StringView Name, bool RaiseIfMissing);
// Raises the library's base error "Expected '%s'".
[[noreturn]] ZENTAVO_API void Expected(StringView Text);
// The text without the single quotes around it, unchanged when it has not both.
ZENTAVO_API String RemoveQuotes(StringView Text);
ZENTAVO_API String ReadString(StringView Text);
// Splits at the first '.'; without one all of `Path` is the first part.
ZENTAVO_API void SplitFieldPath(StringView Path, String& First, String& Second);

// What a name starts with, and what it goes on with.
constexpr bool IsAlpha(char16_t Ch) {
  return (Ch >= u'A' && Ch <= u'Z') || (Ch >= u'a' && Ch <= u'z') || Ch == u'_';
}
constexpr bool IsToken(char16_t Ch) {
  return IsAlpha(Ch) || IsDigit(Ch);
}
ZENTAVO_API bool IsLegalToken(StringView Text);

// The next token, white space and comments before it skipped: a name, digits with at most one
// point, a string without its quotes, or one unit of anything else. ttEndOfTokens with the empty
// text at the end. Before the text's last unit nothing is skipped: white space there is a ttSymbol.
ZENTAVO_API String GetStringToken(StringView Text, std::int32_t& Position,
                                  TStringTokenType& TokenType);
// Skips white space and returns the text up to the next ';' outside quotes, or to the end.
ZENTAVO_API String GetInstruction(StringView Text, std::int32_t& Position);
// The text up to the next ',' or the end, trimmed; the position moves behind the ','.
ZENTAVO_API String ExtractCommaName(StringView Text, std::int32_t& Position);

// The value that a literal shows: #13 a character, 'text' a string, 12 an integer (of 32 bits where
// it fits), 1.5 a double, NULL, True and False in any case; the empty text is Null and anything
// else a string. Raises EConvertError with the text for a number that does not convert and
// ERangeError for a character beyond 65535.
ZENTAVO_API Variant StrToVariant(StringView Text);

enum TValueComparison : std::uint8_t { vcText, vcExactText, vcNumber };
// Whether `Value` is one of the comma-separated elements of `List`, blanks around them aside: as
// text without regard to case, as exact text, or as a number, which elements that are none never
// equal. Any other `Option` counts as vcText. Numbers have '.' in `List` whatever the locale; an
// empty list has no elements. Raises EVariantTypeCastError for a value that has no text.
ZENTAVO_API bool ValueInString(const Variant& Value, StringView List, std::uint8_t Option);

}  // namespace zentavo
