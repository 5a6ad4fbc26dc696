#include "adapters/sql/connection.h"

#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include "adapters/sql/session.h"
#include "adapters/sql/statement.h"
#include "zentavo/framework/format.h"

namespace zentavo {

namespace {

constexpr StringView kSqliteScheme = u"sqlite:";
constexpr StringView kBusyTimeoutSeconds = u"5";

// The settings on which the texts that are read and written depend.
constexpr const char* kPostgresSettings[] = {
    "SET client_encoding TO 'UTF8'",    "SET DateStyle TO 'ISO'",
    "SET bytea_output TO 'hex'",        "SET extra_float_digits TO 1",
    "SET client_min_messages TO error",
};

bool IsPostgresUrl(StringView url) {
  return url.starts_with(u"postgresql://") || url.starts_with(u"postgres://");
}

void Connect(SqlSession& session) {
  if (session.dialect == SqlDialect::kSqlite) {
    session.session.open(soci::sqlite3, session.connect_text);
    return;
  }
  session.session.open(soci::postgresql, session.connect_text);
  for (const char* const setting : kPostgresSettings) session.session << setting;
}

}  // namespace

TSqlConnection::TSqlConnection(StringView url) : session_(std::make_unique<SqlSession>()) {
  if (url.starts_with(kSqliteScheme)) {
    const String file(url.substr(kSqliteScheme.size()));
    session_->connect_text =
        ToUtf8(Format(u"dbname=\"%s\" timeout=%s", {file, kBusyTimeoutSeconds}));
  } else if (IsPostgresUrl(url)) {
    session_->dialect = SqlDialect::kPostgres;
    session_->connect_text = ToUtf8(url);
  } else {
    throw EDatabaseError(Format(u"'%s' is not a database URL", {Excerpt(url)}));
  }
  WithDatabaseErrors([&] { Connect(*session_); });
}

TSqlConnection::~TSqlConnection() = default;

void TSqlConnection::Execute(StringView sql, const SqlParameters& parameters) {
  SqlStatement statement(*session_, sql, parameters);
  statement.Execute();
}

void TSqlConnection::Reconnect() {
  WithDatabaseErrors([&] {
    session_->session.close();
    Connect(*session_);
  });
}

TSqlTransaction::TSqlTransaction(TSqlConnection& connection) : connection_(connection) {
  // SQLite takes its lock at once: what is read in the transaction then stays true until its end.
  const bool sqlite = connection.Session().dialect == SqlDialect::kSqlite;
  connection_.Execute(sqlite ? u"BEGIN IMMEDIATE" : u"BEGIN");
}

TSqlTransaction::~TSqlTransaction() {
  if (!open_) return;
  try {
    connection_.Execute(u"ROLLBACK");
  } catch (const Exception&) {
    // The connection is gone, and the transaction with it.
    return;
  }
}

void TSqlTransaction::Commit() {
  connection_.Execute(u"COMMIT");
  open_ = false;
}

}  // namespace zentavo
