# The compiler's runtime libraries for Windows programs. Exceptions and standard types cross the
# border of zentavo.dll, so the library and its users share one runtime, which lies beside them.
set(zentavo_runtime_libraries "")
if(MINGW)
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libgcc_s_dw2-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(IS_ABSOLUTE "${path}" AND EXISTS "${path}")
      list(APPEND zentavo_runtime_libraries ${path})
    endif()
  endforeach()
endif()

# Copies the runtime libraries beside the programs before `target` is built.
function(zentavo_copy_runtime target)
  set(copies "")
  foreach(library IN LISTS zentavo_runtime_libraries)
    get_filename_component(name ${library} NAME)
    set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name})
    add_custom_command(OUTPUT ${copy} DEPENDS ${library}
                       COMMAND ${CMAKE_COMMAND} -E copy ${library} ${copy})
    list(APPEND copies ${copy})
  endforeach()
  if(copies)
    add_custom_target(${target}_runtime DEPENDS ${copies})
    add_dependencies(${target} ${target}_runtime)
  endif()
endfunction()
