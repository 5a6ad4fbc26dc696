# The tests start the tool, which lies beside them.
target_link_libraries(${folder}_tests PRIVATE zentavo_commands)
add_dependencies(${folder}_tests zentavo_tool)
# The servers that the commands talk to.
target_sources(${folder}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/web_socket_server.cpp)
if(WIN32)
  target_link_libraries(${folder}_tests PRIVATE ws2_32)
endif()
