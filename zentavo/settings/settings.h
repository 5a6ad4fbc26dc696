// Small per-user settings: in the registry under HKEY_CURRENT_USER\SOFTWARE\Zentavo on Windows, in
// the file zentavo/settings.ini under $XDG_CONFIG_HOME (default ~/.config) on Linux.
//
//   WriteRegistryString(u"Printing\\Labels", u"Printer", u"Zebra");
//   ReadRegistryString(u"Printing\\Labels", u"Printer");  // u"Zebra"
//
// A section is a path with '\' between its levels; empty levels do not count. Sections and names
// ignore case, and every text ends at its first zero unit. A section with a level of more than 255
// units cannot be created; its settings are those of the root, above all sections.
//
// The functions may be called from any thread, and from several processes at once.
#pragma once

#include "zentavo/framework/exception.h"
#include "zentavo/framework/text.h"

namespace zentavo {

ZENTAVO_DECLARE_EXCEPTION(ERegistryException, Exception);

// Returns the value, the empty text when there is none. Creates the section where it is missing, on
// which callers rely; where that is not possible the value of the root comes back. Raises
// ERegistryException "Invalid data type for '%s'" for a value that is no text (Windows).
ZENTAVO_API String ReadRegistryString(StringView Section, StringView Name);

// Sets the value, and creates the section where it is missing. Raises ERegistryException "Failed to
// set data for '%s'. %s" with the name and the system's text, and changes nothing then.
ZENTAVO_API void WriteRegistryString(StringView Section, StringView Name, StringView Value);

}  // namespace zentavo
