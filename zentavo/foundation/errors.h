// The library's errors and the one way of raising them.
//
// Before a raiser raises, it records the text in FLastErrorString. In two kinds of host it then
// does not raise the visible error but the framework's silent abort, EAbort: in an automation host
// (FIsAutomation), and in a batch run (XBatchExecHND is set), whose window gets the text first, as
// message 1082 with wParam 1 and the zero-terminated text's address in lParam. ZentavoAbort always
// raises its own exception and records nothing.
//
// The globals are not synchronised: of several threads the last writer wins.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "zentavo/framework/component.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"

namespace zentavo {

ZENTAVO_DECLARE_EXCEPTION(EZentavoError, Exception);
// Not an EZentavoError, so that a handler of errors does not swallow an abort.
ZENTAVO_DECLARE_EXCEPTION(EZentavoAbort, Exception);

// An error with a number that a caller can branch on.
class ZENTAVO_API EZentavoExtError : public Exception {
 public:
  static EZentavoExtError CreateId(std::int32_t Id, String Msg);
  EZentavoExtError(const EZentavoExtError&) = default;
  EZentavoExtError& operator=(const EZentavoExtError&) = default;
  ~EZentavoExtError() override;

  std::int32_t ErrorId() const noexcept { return FErrorId; }

 private:
  EZentavoExtError(std::int32_t Id, String Msg);

  std::int32_t FErrorId;
};

extern ZENTAVO_API String FLastErrorString;    // the text last passed to a raiser
extern ZENTAVO_API String FLastMessageString;  // kept for hosts; cleared when the library unloads
extern ZENTAVO_API bool FIsAutomation;         // set by a host that runs without a user interface
extern ZENTAVO_API bool FInNetCallBack;        // set by a host inside a network call-back

// Raises EZentavoError with `Msg`, behind the name of `Component` and ": " when it has a name.
[[noreturn]] ZENTAVO_API void ZentavoError(StringView Msg, const TComponent* Component = nullptr);
// The same with Format(Fmt, Args).
[[noreturn]] ZENTAVO_API void ZentavoErrorFmt(StringView Fmt, std::initializer_list<FormatArg> Args,
                                              const TComponent* Component = nullptr);
[[noreturn]] ZENTAVO_API void ZentavoExtError(std::int32_t Id, StringView Msg);
// Raises EZentavoAbort "Operation aborted".
[[noreturn]] ZENTAVO_API void ZentavoAbort();

}  // namespace zentavo
