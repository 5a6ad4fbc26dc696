// Runs the package's start-up and shut-down with the loading and unloading of the shared library.
#include "zentavo/foundation/package.h"

namespace zentavo {

namespace {

struct LibraryEntry {
  LibraryEntry() { LoadPackage(); }
  LibraryEntry(const LibraryEntry&) = delete;
  LibraryEntry& operator=(const LibraryEntry&) = delete;
  ~LibraryEntry() { UnloadPackage(); }
};

const LibraryEntry library_entry;

}  // namespace

}  // namespace zentavo
