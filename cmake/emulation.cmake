# Programs of another architecture, started like this machine's own, by tests and by each other: they
# are built into target-bin, and bin holds a script for each that hands it to the emulator. The link
# to the emulator bears the program's name: the kernel knows the process by it.
set(orv_target_bin ${CMAKE_BINARY_DIR}/target-bin)
if(CMAKE_CROSSCOMPILING)
  list(GET CMAKE_CROSSCOMPILING_EMULATOR 0 emulator)
  find_program(ORV_EMULATOR ${emulator} REQUIRED)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${orv_target_bin})
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/emulator ${CMAKE_BINARY_DIR}/${ORV_CAMERA_LIBEXEC})
endif()

function(orv_wrap_programs directory)
  get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
  foreach(subdirectory ${subdirectories})
    orv_wrap_programs(${subdirectory})
  endforeach()
  get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${targets})
    get_target_property(type ${target} TYPE)
    get_target_property(output ${target} RUNTIME_OUTPUT_DIRECTORY)
    if(type STREQUAL EXECUTABLE AND output STREQUAL orv_target_bin)
      file(CREATE_LINK ${ORV_EMULATOR} ${CMAKE_BINARY_DIR}/emulator/${target} SYMBOLIC)
      file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/bin/${target} @ONLY CONTENT
"#!/bin/sh
exec '@CMAKE_BINARY_DIR@/emulator/@target@' -L '@CMAKE_SYSROOT@' '@orv_target_bin@/@target@' \"$@\"
")
      file(CHMOD ${CMAKE_BINARY_DIR}/bin/${target} PERMISSIONS
           OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    endif()
  endforeach()
endfunction()
