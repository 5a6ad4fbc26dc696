find_package(fmt REQUIRED)
find_package(Qt5Core REQUIRED)
set(peers zentavo::sql fmt::fmt Qt5::Core ${soci_core_library} ${soci_sqlite3_library})
include_directories(SYSTEM ${soci_include_dir})
