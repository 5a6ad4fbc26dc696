// Shows what the library does, on data that are the same on every machine.
#include <cstdlib>
#include <exception>
#include <iostream>

#include "examples/demo/parts.h"
#include "zentavo/foundation/package.h"
#include "zentavo/platform/console.h"

namespace {

struct Part {
  const char* title;
  void (*show)();
};

constexpr Part kParts[] = {
    {"Business formulas: a price list", demo::PriceTheList},
};

}  // namespace

int main() {
  zentavo::platform::SetBinaryStandardStreams();
  zentavo::LoadPackage();
  int status = EXIT_SUCCESS;
  for (const Part& part : kParts) {
    std::cout << "== " << part.title << "\n\n";
    try {
      part.show();
    } catch (const std::exception& error) {
      std::cerr << "demo: " << error.what() << "\n";
      status = EXIT_FAILURE;
    }
    std::cout << "\n";
  }
  zentavo::UnloadPackage();
  return status;
}
