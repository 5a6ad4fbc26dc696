#include "zentavo/platform/linux/http_errors.h"

namespace zentavo::platform {

SystemError HttpErrorOf(CURLcode result, std::string_view text) {
  // The alert that a server sends which insists on a client certificate.
  if (result != CURLE_OK && text.find("certificate required") != text.npos) {
    return kHttpClientCertificateNeeded;
  }
  switch (result) {
    case CURLE_OK: return 0;
    case CURLE_OPERATION_TIMEDOUT: return kHttpTimeout;
    case CURLE_URL_MALFORMAT: return kHttpInvalidUrl;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY: return kHttpNameNotResolved;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY: return kHttpCannotConnect;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS: return kHttpSecureFailure;
    case CURLE_UNSUPPORTED_PROTOCOL:  // an answer that is no HTTP
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_HTTP2: return kHttpInvalidResponse;
    case CURLE_RECV_ERROR:
      return text.find("chunked") != text.npos ? kHttpInvalidResponse : kHttpConnectionError;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_SEND_FAIL_REWIND: return kHttpConnectionError;
    default: return kHttpInternalError;
  }
}

}  // namespace zentavo::platform
