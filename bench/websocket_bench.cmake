find_package(Boost REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(websockets REQUIRED IMPORTED_TARGET libwebsockets)
set(peers Boost::boost PkgConfig::websockets)
