# Installation, and the package that find_package(zentavo) finds afterwards.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zentavo)

install(TARGETS zentavo EXPORT zentavo)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/zentavo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h"
        PATTERN platform/linux EXCLUDE PATTERN platform/windows EXCLUDE)
if(TARGET zentavo_sql)
  install(TARGETS zentavo_sql EXPORT zentavo)
  install(FILES ${PROJECT_SOURCE_DIR}/adapters/sql/connection.h
                ${PROJECT_SOURCE_DIR}/adapters/sql/sql_data_set.h
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/adapters/sql)
endif()
install(EXPORT zentavo NAMESPACE zentavo:: FILE zentavo-targets.cmake
        DESTINATION ${package_folder})
if(zentavo_runtime_libraries)
  install(FILES ${zentavo_runtime_libraries} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
if(TARGET zentavo_tool)
  set_target_properties(zentavo_tool PROPERTIES
                        INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS zentavo_tool)
endif()

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/zentavo-config.cmake.in ${PROJECT_BINARY_DIR}/zentavo-config.cmake
  INSTALL_DESTINATION ${package_folder})
# Before 1.0.0 the minor version says what is compatible.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zentavo-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zentavo-config.cmake
              ${PROJECT_BINARY_DIR}/zentavo-config-version.cmake
        DESTINATION ${package_folder})
