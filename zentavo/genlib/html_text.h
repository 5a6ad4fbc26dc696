// Two small producers of HTML: pages from command-link text, and a fix-up for embedding hosts.
//
// In command-link text <Open$OPEN 1> is a link that shows "Open" and runs the command "OPEN 1":
//
//   XCHToHTML(u"Hello\r\n<Open$OPEN 1>");
//   // <html>\r\n<p>Hello</p>\r\n<p><a href="xcmd:OPEN 1">Open</a></p>\r\n</html>
//
// Both take time linear in the text, whatever it holds, and may be called from any thread.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// Returns a page with a paragraph for each line of `Text`, links made, nothing escaped. CR, LF, or
// any two of them in a row, end a line; a last line without an end is a paragraph too. A '<' that
// is not followed by a '$', and that by a '>', is text.
ZENTAVO_API String XCHToHTML(StringView Text);

// Returns `Html` with "external" as "_external", and then `src="XCon.js">` as
// "> var XCon=external;", both without regard to case.
ZENTAVO_API String fixHtmlCode(StringView Html);

}  // namespace zentavo
