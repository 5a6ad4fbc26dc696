find_package(SQLite3 REQUIRED)
set(peers SQLite::SQLite3)
