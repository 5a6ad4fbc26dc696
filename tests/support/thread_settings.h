// Format settings that hold on the calling thread for the life of a scope.
#pragma once

#include <utility>

#include "zentavo/framework/format_settings.h"

namespace zentavo::testing {

class ThreadSettings {
 public:
  explicit ThreadSettings(TFormatSettings settings) {
    SetThreadFormatSettings(std::move(settings));
  }
  ThreadSettings(const ThreadSettings&) = delete;
  ThreadSettings& operator=(const ThreadSettings&) = delete;
  ~ThreadSettings() { SetThreadFormatSettings(std::nullopt); }
};

// ',' before decimals, '.' between thousands, dates as "31.12.2020".
inline TFormatSettings CommaSettings() {
  TFormatSettings settings;
  settings.DecimalSeparator = u',';
  settings.ThousandSeparator = u'.';
  settings.DateSeparator = u'.';
  settings.ShortDateFormat = u"dd.mm.yyyy";
  return settings;
}

}  // namespace zentavo::testing
