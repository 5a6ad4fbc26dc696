// The units of the library in their dependency order.
#include <iterator>

#include "zentavo/formula/identifiers.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/foundation/helper_unit.h"
#include "zentavo/foundation/package.h"
#include "zentavo/http/session.h"
#include "zentavo/http/web_socket_connection.h"
#include "zentavo/threads_memory/timer.h"

namespace zentavo {

namespace {

void FinalizeErrors() {
  FLastErrorString.clear();
  FLastMessageString.clear();
}

constinit PackageUnit units[] = {
    {"Fileaccess", nullptr, nullptr},
    {"Helper", InitializeHelper, nullptr},
    {"Convert", nullptr, nullptr},
    {"Genlib", nullptr, nullptr},
    {"XErrors", nullptr, FinalizeErrors},
    {"XIniFiles", nullptr, nullptr},
    {"uJSON", nullptr, nullptr},
    {"Spell", nullptr, nullptr},
    {"ParseLib", nullptr, nullptr},
    {"Expr", nullptr, nullptr},
    {"XParser", InitializeParserFunctions, FinalizeParserFunctions},
    {"FGeneticAlgorithm", nullptr, nullptr},
    {"ScoringAlgorithm", nullptr, nullptr},
    {"XTimers", nullptr, FinalizeTimers},
    {"XWinHTTP", InitializeWebSockets, FinalizeHttp},
};

}  // namespace

void LoadPackage() {
  InitializeUnits(units);
}
void UnloadPackage() {
  FinalizeUnits(units);
}
std::span<const PackageUnit> PackageUnits() {
  return units;
}

}  // namespace zentavo
