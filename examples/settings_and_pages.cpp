// Texts in code pages, a page of command links, an HTML object in a stream, a setting and an event.
#include <iostream>

#include "zentavo/framework/stream.h"
#include "zentavo/genlib/code_pages.h"
#include "zentavo/genlib/event_log.h"
#include "zentavo/genlib/html_text.h"
#include "zentavo/settings/settings.h"
#include "zentavo/textout/html_object.h"

int main() {
  using namespace zentavo;

  const std::int32_t page = GetCodePageFromLocale(0x0408);  // Greek
  std::cout << page << '\n';
  if (NotInCodePage(u"Ποσό 10 €", page)) return 1;
  const AnsiString bytes = Utf8ToCodePage("Αθήνα", page);
  if (ToUtf8(AnsiToUnicode(bytes, 1253)) != "Αθήνα") return 1;

  std::cout << ToUtf8(XCHToHTML(u"Orders of today\n<Open$OPEN 1>")) << '\n';

  TZentavoHtmlObj document;
  document.AddPart("body", "<p>Invoice 1234, two pages</p>");
  TMemoryStream stream;
  document.SaveToStream(stream);
  TZentavoHtmlObj read;
  read.LoadFromStream(stream);
  if (read.GetPartByName("body") != 0) return 1;

  try {
    WriteRegistryString(u"Examples", u"LastPage", u"invoice");
    std::cout << ToUtf8(ReadRegistryString(u"Examples", u"LastPage")) << '\n';
  } catch (const ERegistryException& error) {
    std::cout << error.what() << '\n';  // a user without a place for settings
  }
  WriteToWindowsEventLog(1, u"The example has run", 4);
}
