#include "zentavo/http/request.h"

#include <utility>

#include "zentavo/foundation/helper_text.h"
#include "zentavo/framework/atomic_file.h"
#include "zentavo/http/header_text.h"

namespace zentavo {

namespace {

constexpr StringView kJsonHeader = u"Content-type: application/json; charset=utf-8";
constexpr StringView kTestService = u"https://localhost/webservices";
constexpr std::size_t kHeaderUnits = 2048 / sizeof(char16_t) - 1;  // a terminated buffer's text
constexpr std::uint32_t kFirstFailure = 300;

StringView UsualVerb(StringView body) {
  return body.empty() ? u"GET" : u"POST";
}

}  // namespace

THTTPRequest::THTTPRequest(THTTPConnection& Connection, StringView path)
    : FConnection(Connection), FPath(path), FConnectionOwned(false) {}

THTTPRequest::THTTPRequest(std::unique_ptr<THTTPConnection> owned, String path)
    : owned_(std::move(owned)),
      FConnection(*owned_),
      FPath(std::move(path)),
      FConnectionOwned(true) {}

THTTPRequest::~THTTPRequest() = default;

std::unique_ptr<THTTPRequest> THTTPRequest::CreateFromUrl(StringView url) {
  String path;
  std::unique_ptr<THTTPConnection> connection = CreateConnectionFromUrl(url, path);
  return std::unique_ptr<THTTPRequest>(new THTTPRequest(std::move(connection), std::move(path)));
}

String THTTPRequest::Execute(StringView instr, bool AIspost, const std::vector<String>& AHeaders) {
  return ExecuteWithVerb(instr, AIspost ? StringView(u"POST") : UsualVerb(instr), AHeaders);
}

String THTTPRequest::ExecuteWithHeaders(StringView instr, StringView AHeaders, StringView verb) {
  for (const String& line : SplitStr(AHeaders, u'\r')) {
    const StringView header = TrimView(line);
    if (!header.empty()) AddHeader(header);
  }
  return ExecuteText(instr, verb.empty() ? UsualVerb(instr) : verb);
}

String THTTPRequest::ExecuteWithVerb(StringView instr, StringView AVerb,
                                     const std::vector<String>& AHeaders) {
  for (const String& header : AHeaders) AddHeader(header);
  return ExecuteText(instr, AVerb);
}

String THTTPRequest::ExecuteText(StringView instr, StringView verb) {
  if (FHeaders.empty() && !instr.empty()) AddHeader(kJsonHeader);
  OpenOnce(verb);
  const AnsiString body = ToUtf8(instr);
  FConnection.SendRequest(*FRequest, FHeaders, body.data(), body.size());
  FConnection.ReceiveResponse(*FRequest);
  return FConnection.ReadResponseString(*FRequest);
}

void THTTPRequest::Execute(TStream* iStream, TStream* oStream) {
  const bool has_body = iStream != nullptr && iStream->Size() > 0;
  OpenOnce(has_body ? u"POST" : u"GET");
  if (has_body) {
    FConnection.SendRequest(*FRequest, FHeaders, *iStream);
  } else {
    FConnection.SendRequest(*FRequest, FHeaders, nullptr, 0);
  }
  FConnection.ReceiveResponse(*FRequest, oStream);
}

void THTTPRequest::OpenOnce(StringView verb) {
  if (!FRequest) FRequest = FConnection.OpenRequest(FPath, verb);
}

void THTTPRequest::AddHeader(StringView Header) {
  if (!IsHeaderLine(Header)) RaiseHttpError(platform::kHttpInvalidParameter);
  FHeaders.append(Header).append(u"\r\n");
}

String THTTPRequest::GetHeader(std::int32_t Id) const {
  return GetCustomHeader(HeaderName(Id));
}

String THTTPRequest::GetCustomHeader(StringView hname) const {
  if (!FRequest || hname.empty()) return {};
  const StringView value = FRequest->Header(hname).value_or(StringView());
  return value.size() > kHeaderUnits ? String() : String(value);
}

std::uint32_t THTTPRequest::GetHTTPStatusCode() const {
  return FRequest ? FRequest->StatusCode() : 0;
}

String THTTPRequest::DoExecute(StringView url, StringView instr) {
  return CreateFromUrl(url)->Execute(instr);
}

String THTTPRequest::DoExecuteWithHeaders(StringView url, StringView instr, StringView headers,
                                          StringView verb) {
  return CreateFromUrl(url)->ExecuteWithHeaders(instr, headers, verb);
}

void THTTPRequest::DoExecuteStream(StringView url, TStream* iStream, TStream* oStream) {
  CreateFromUrl(url)->Execute(iStream, oStream);
}

void THTTPRequest::DownLoadFile(StringView url, StringView Filename) {
  const std::unique_ptr<THTTPRequest> request = CreateFromUrl(url);
  request->Execute(nullptr, nullptr);
  const std::uint32_t status = request->GetHTTPStatusCode();
  if (status >= kFirstFailure) RaiseHttpError(status);
  TAtomicFileStream file(Filename);
  request->FConnection.DoReadResponseStream(*request->FRequest, file);
  file.Commit();
}

String THTTPRequest::TestHTTP() {
  return DoExecute(kTestService, u"{ \"service\": \"setdata\"}");
}

}  // namespace zentavo
