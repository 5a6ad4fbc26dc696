# The tests start the tool, which lies beside them.
target_link_libraries(${folder}_tests PRIVATE zentavo_commands)
add_dependencies(${folder}_tests zentavo_tool)
if(WIN32)
  target_link_libraries(${folder}_tests PRIVATE ws2_32)
endif()
