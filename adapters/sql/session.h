// The connection behind TSqlConnection.
#pragma once

#include <soci/soci.h>

#include <exception>
#include <string>

#include "zentavo/framework/data_set.h"

namespace zentavo {

enum class SqlDialect { kSqlite, kPostgres };

struct SqlSession {
  soci::session session;
  SqlDialect dialect = SqlDialect::kSqlite;
  std::string connect_text;
};

// Runs `call`; what the database library raises becomes an EDatabaseError.
template <typename Call>
decltype(auto) WithDatabaseErrors(Call call) {
  try {
    return call();
  } catch (const soci::soci_error& error) {
    throw EDatabaseError(FromUtf8(error.get_error_message()));
  } catch (const Exception&) {
    throw;
  } catch (const std::exception& error) {
    throw EDatabaseError(FromUtf8(error.what()));
  }
}

}  // namespace zentavo
