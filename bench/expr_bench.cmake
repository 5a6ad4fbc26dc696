find_package(PkgConfig REQUIRED)
pkg_check_modules(muparserx REQUIRED IMPORTED_TARGET muparserx)
pkg_check_modules(lua REQUIRED IMPORTED_TARGET lua5.4)
set(peers PkgConfig::muparserx PkgConfig::lua)
