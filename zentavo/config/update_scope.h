// One change notification of a string list for all that happens in a scope.
#pragma once

#include <exception>

#include "zentavo/framework/string_list.h"

namespace zentavo {

class UpdateScope {
 public:
  explicit UpdateScope(TStringList& list) : list_(list) { list_.BeginUpdate(); }
  UpdateScope(const UpdateScope&) = delete;
  UpdateScope& operator=(const UpdateScope&) = delete;
  // Raises what the list's handler raises, unless the scope is left by an exception.
  ~UpdateScope() noexcept(false) {
    if (std::uncaught_exceptions() == exceptions_) {
      list_.EndUpdate();
      return;
    }
    try {
      list_.EndUpdate();
    } catch (...) {
      // The exception under way counts.
    }
  }

 private:
  TStringList& list_;
  int exceptions_ = std::uncaught_exceptions();
};

}  // namespace zentavo
