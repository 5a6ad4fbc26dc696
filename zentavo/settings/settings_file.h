// Settings in an ini file that several processes share.
//
// Changes are made one after the other, under a lock beside the file, each on what the file holds
// at that moment, and replace it as a whole. In names and values "%XXXX", the unit in hexadecimal,
// stands for what an ini file could not give back: line breaks, blanks at the ends, a '=' in a
// name.
#pragma once

#include <functional>
#include <optional>

#include "zentavo/framework/text.h"

namespace zentavo {

class TXMemIniFile;

// Names a file and holds nothing of it. May be used from any thread.
class ZENTAVO_API SettingsFile {
 public:
  // The file is zentavo/settings.ini in `folder`, which ends in a separator.
  explicit SettingsFile(StringView folder);

  // A section's levels are parted by '\'; nothing is the root.
  using Section = std::optional<String>;

  // Returns the value, the empty text when there is none. Creates a section that is missing; when
  // that is not possible the value of the root comes back.
  String Read(const Section& section, StringView name) const;

  // Raises EFCreateError, EFOpenError or EWriteError with the file's name, and changes nothing
  // then. Before lines of the file are given up that are no settings (comments, lines before the
  // first section, bytes that are not UTF-8), it is copied to settings.ini.kept-1, -2 and so on.
  void Write(const Section& section, StringView name, StringView value) const;

  const String& FileName() const { return file_name_; }

 private:
  // Runs `change` on the file's content under the lock and saves it.
  void Update(const std::function<void(TXMemIniFile&)>& change) const;

  String folder_;
  String file_name_;
};

}  // namespace zentavo
