#include "zentavo/foundation/errors.h"

#include <utility>

#include "zentavo/foundation/host.h"

namespace zentavo {

// Initialised before, and so destroyed after, the object that finalises the units at unload.
[[gnu::init_priority(200)]] String FLastErrorString;
[[gnu::init_priority(200)]] String FLastMessageString;
constinit bool FIsAutomation = false;
constinit bool FInNetCallBack = false;

namespace {

constexpr std::uint32_t kErrorTextMessage = 1082;
constexpr std::uintptr_t kErrorTextIsError = 1;

// Records the text; in the two kinds of host that show errors themselves, hands it over and ends
// the operation silently.
void NoteError(StringView message) {
  FLastErrorString = message;
  if (FIsAutomation) Abort();
  if (XBatchExecHND != 0) {
    const String text(message);
    platform::SendWindowMessage(XBatchExecHND, kErrorTextMessage, kErrorTextIsError,
                                reinterpret_cast<std::intptr_t>(text.c_str()));
    Abort();
  }
}

}  // namespace

EZentavoError::~EZentavoError() = default;
EZentavoAbort::~EZentavoAbort() = default;
EZentavoExtError::~EZentavoExtError() = default;

EZentavoExtError::EZentavoExtError(std::int32_t Id, String Msg)
    : Exception(std::move(Msg)), FErrorId(Id) {}

EZentavoExtError EZentavoExtError::CreateId(std::int32_t Id, String Msg) {
  return {Id, std::move(Msg)};
}

void ZentavoError(StringView Msg, const TComponent* Component) {
  NoteError(Msg);
  const bool named = Component != nullptr && !Component->Name().empty();
  throw EZentavoError(named ? Component->Name() + u": " + String(Msg) : String(Msg));
}

void ZentavoErrorFmt(StringView Fmt, std::initializer_list<FormatArg> Args,
                     const TComponent* Component) {
  ZentavoError(Format(Fmt, Args), Component);
}

void ZentavoExtError(std::int32_t Id, StringView Msg) {
  NoteError(Msg);
  throw EZentavoExtError::CreateId(Id, String(Msg));
}

void ZentavoAbort() {
  throw EZentavoAbort(u"Operation aborted");
}

}  // namespace zentavo
