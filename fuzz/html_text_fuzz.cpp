// Any text as command-link text and as HTML to be fixed: nothing of the text is lost.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "zentavo/genlib/html_text.h"

using namespace zentavo;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const String text = FromUtf8({reinterpret_cast<const char*>(data), size});
  const String page = XCHToHTML(text);
  Require(page.starts_with(u"<html>\r\n") && page.ends_with(u"</html>"));
  // Without marks only breaks go.
  if (text.find_first_of(u"<\r\n") == String::npos && !text.empty()) {
    Require(page == u"<html>\r\n<p>" + text + u"</p>\r\n</html>");
  }
  const String fixed = fixHtmlCode(text);
  if (AnsiUpperCase(text).find(u'X') == String::npos) Require(fixed == text);
  return 0;
}
