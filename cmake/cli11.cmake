# CLI11: the installed package natively. It is headers alone, so a cross build uses a copy of them;
# the folder they are installed in holds the build machine's system headers too.
if(CMAKE_CROSSCOMPILING)
  set(cli11_include ${PROJECT_BINARY_DIR}/third_party/include)
  file(COPY /usr/include/CLI DESTINATION ${cli11_include})
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${cli11_include})
else()
  find_package(CLI11 REQUIRED)
endif()
