#include "zentavo/genlib/quoted_pieces.h"

#include "zentavo/genlib/sql_text.h"

namespace zentavo {

namespace {

struct Quotes {
  char16_t open;
  char16_t close;

  int DepthBehind(char16_t unit, int depth) const {
    if (open == close) return unit != open ? depth : depth <= 0 ? depth + 1 : depth - 1;
    if (unit == open) return depth + 1;
    return unit == close ? depth - 1 : depth;
  }
};

// Where the piece that begins at `start` ends: at a separator, or with the text.
std::size_t EndOfPiece(StringView text, std::size_t start, char16_t separator,
                       const Quotes& quotes) {
  int depth = 0;
  for (std::size_t at = start; at < text.size(); ++at) {
    if (depth == 0 && text[at] == separator) return at;
    depth = quotes.DepthBehind(text[at], depth);
  }
  return text.size();
}

}  // namespace

std::vector<StringView> QuotedPieces(StringView text, char16_t separator, char16_t open_quote,
                                     char16_t close_quote) {
  const Quotes quotes{open_quote, close_quote};
  std::vector<StringView> pieces;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = EndOfPiece(text, start, separator, quotes);
    pieces.push_back(TrimView(text.substr(start, end - start)));
    start = end + 1;
  }
  return pieces;
}

void ExtractQuoteStings(TStringList& List, StringView Text, char16_t Separator, char16_t OpenQuote,
                        char16_t CloseQuote) {
  const String text(Text);  // may be one of the list's own
  List.BeginUpdate();
  try {
    List.Clear();
    for (const StringView piece : QuotedPieces(text, Separator, OpenQuote, CloseQuote)) {
      List.Add(piece);
    }
  } catch (...) {
    List.EndUpdate();
    throw;
  }
  List.EndUpdate();
}

}  // namespace zentavo
