// Connections to databases.
//
// A connection and the data sets on it are used by one thread at a time. Failures of the database
// raise EDatabaseError with its own text.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "zentavo/framework/text.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

class SqlCursor;
struct SqlSession;

// Named values of a statement, which names them ":NAME". Values are always bound, never made part
// of the statement's text.
using SqlParameters = std::vector<std::pair<String, Variant>>;

class TSqlConnection {
 public:
  // `url` is "sqlite:FILE" (the file is made when there is none) or "postgresql://...". SQLite
  // waits up to five seconds for other users of the file. Raises EDatabaseError "'%s' is not a
  // database URL" for another text.
  explicit TSqlConnection(StringView url);
  TSqlConnection(const TSqlConnection&) = delete;
  TSqlConnection& operator=(const TSqlConnection&) = delete;
  ~TSqlConnection();

  // Runs a statement that returns nothing.
  void Execute(StringView sql, const SqlParameters& parameters = {});
  // Connects anew, after the connection was lost.
  void Reconnect();

  // For the data sets on this connection.
  SqlSession& Session() const { return *session_; }

 private:
  std::unique_ptr<SqlSession> session_;
};

// A transaction that is taken back unless it is committed. Transactions do not nest.
class TSqlTransaction {
 public:
  explicit TSqlTransaction(TSqlConnection& connection);
  TSqlTransaction(const TSqlTransaction&) = delete;
  TSqlTransaction& operator=(const TSqlTransaction&) = delete;
  ~TSqlTransaction();

  void Commit();

 private:
  TSqlConnection& connection_;
  bool open_ = true;
};

}  // namespace zentavo
