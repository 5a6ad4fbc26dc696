// Asks web services: http_client URL [FILE]. Prints what a GET answers, with its status and type,
// or downloads into FILE. Without arguments it takes an address apart and shows an error.
#include <cstdlib>
#include <iostream>

#include "zentavo/foundation/errors.h"
#include "zentavo/http/request.h"
#include "zentavo/platform/console.h"

namespace {

using zentavo::String;
using zentavo::StringView;
using zentavo::THTTPConnection;
using zentavo::THTTPRequest;
using zentavo::ToUtf8;

void Show(StringView url) {
  const auto request = THTTPRequest::CreateFromUrl(url);
  request->AddHeader(u"Accept: application/json, text/*");
  const String answer = request->Execute(u"");
  std::cout << request->GetHTTPStatusCode() << ' '
            << ToUtf8(request->GetCustomHeader(u"Content-Type")) << '\n'
            << ToUtf8(answer) << '\n';
}

void ShowWithoutServer() {
  const zentavo::TUrlParts parts = zentavo::SplitUrl(u"https://example.org:8443/orders?id=7");
  std::cout << ToUtf8(parts.Host) << ' ' << parts.Port << ' ' << ToUtf8(parts.Path) << '\n';
  try {
    Show(u"https:/example.org");
  } catch (const zentavo::EZentavoError& error) {
    std::cout << error.what() << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  const auto arguments = zentavo::platform::ProgramArguments(argc, argv);
  THTTPConnection::HttpCallTimeouts(5000, 10000, 20000);  // of the sessions of this thread
  try {
    if (arguments.empty()) ShowWithoutServer();
    if (arguments.size() == 1) Show(zentavo::FromUtf8(arguments[0]));
    if (arguments.size() == 2) {
      THTTPRequest::DownLoadFile(zentavo::FromUtf8(arguments[0]), zentavo::FromUtf8(arguments[1]));
    }
  } catch (const zentavo::Exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
