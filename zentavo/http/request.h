// One HTTP request, and whole exchanges in one call.
//
//   String answer = THTTPRequest::DoExecute(u"https://example.org/orders", u"{\"id\": 7}");
//
// Texts are sent as UTF-8. A status of 300 or above is no error here: the answer's text comes back
// all the same, and GetHTTPStatusCode tells. Failures raise as on THTTPConnection.
#pragma once

#include <memory>
#include <vector>

#include "zentavo/http/connection.h"

namespace zentavo {

class ZENTAVO_API THTTPRequest : public TObject {
 public:
  // `Connection` outlives the request.
  THTTPRequest(THTTPConnection& Connection, StringView path);
  THTTPRequest(const THTTPRequest&) = delete;
  THTTPRequest& operator=(const THTTPRequest&) = delete;
  ~THTTPRequest() override;
  // On a connection of its own, on the shared session. Raises EZentavoError "Error in URL: ".
  static std::unique_ptr<THTTPRequest> CreateFromUrl(StringView url);

  // Sends `instr` and returns the answer's text. The verb is POST when `AIspost` or `instr` is not
  // empty, else GET; the first execution decides it for all of the object's. A body without any
  // header of the caller's goes as "application/json; charset=utf-8". Each of `AHeaders` is a line.
  String Execute(StringView instr, bool AIspost = false, const std::vector<String>& AHeaders = {});
  // The same with `verb`, or POST with a body and GET without; `AHeaders` is one text, whose lines
  // are trimmed and taken unless empty.
  String ExecuteWithHeaders(StringView instr, StringView AHeaders, StringView verb = {});
  String ExecuteWithVerb(StringView instr, StringView AVerb,
                         const std::vector<String>& AHeaders = {});
  // Streams all of `iStream`, which may be null, and the answer's body into `oStream`, likewise.
  void Execute(TStream* iStream, TStream* oStream);

  // For every execution from now on. Raises EZentavoExtError 87 unless it is one well-formed line.
  void AddHeader(StringView Header);

  // A header of the answer, by WinHTTP's number or by name; empty when there is none or it has more
  // than 1023 units.
  String GetHeader(std::int32_t Id) const;
  String GetCustomHeader(StringView hname) const;
  std::uint32_t GetHTTPStatusCode() const;  // 0 before an answer

  THTTPConnection& Connection() { return FConnection; }
  bool ConnectionOwned() const { return FConnectionOwned; }  // by the request

  static String DoExecute(StringView url, StringView instr);
  static String DoExecuteWithHeaders(StringView url, StringView instr, StringView headers,
                                     StringView verb = {});
  static void DoExecuteStream(StringView url, TStream* iStream, TStream* oStream);
  // Puts the body in the file's place once it is whole. A failure, or a status of 300 or above,
  // which raises EZentavoExtError "[WinHTTP]: Error %d" with the status, leaves the file as it was.
  static void DownLoadFile(StringView url, StringView Filename);
  // Posts { "service": "setdata"} to a web service of this computer; returns the answer's text.
  static String TestHTTP();

 private:
  THTTPRequest(std::unique_ptr<THTTPConnection> owned, String path);

  void OpenOnce(StringView verb);
  String ExecuteText(StringView instr, StringView verb);

  std::unique_ptr<THTTPConnection> owned_;
  THTTPConnection& FConnection;
  THTTPHandle FRequest;
  String FPath;
  bool FConnectionOwned;
  String FHeaders;
};

}  // namespace zentavo
