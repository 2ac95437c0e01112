# Language level, warnings and instrumentation for every target of this project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# A tree works wherever it is put, the build tree too, which has the same shape. Programs name one
# directory at most, since the dynamic linker looks through each in a dozen ways; libraries say more
# where they are made.
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

# Where files can be large anyway, functions of the C library keep their plain names (open, not open64).
add_compile_definitions(_GNU_SOURCE $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:_FILE_OFFSET_BITS=64>)
add_compile_options(
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wformat=2 -Wundef
  -Wcast-align -Wcast-qual -Wdouble-promotion -Wvla -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor> $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual> $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)
add_link_options(-Wl,-z,relro -Wl,--as-needed)

if(ORV_SANITIZE)
  # GCC 12 sees conversions and overflows in what its sanitizers add; the other builds check these.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer -O1 -Wno-sign-conversion)
  add_link_options(-fsanitize=address,undefined)
endif()
if(ORV_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# For what test scripts start over and over: loading the C++ runtime as a library of its own takes
# longer than all that a short command does.
function(orv_link_quick_start target)
  if(NOT ORV_SANITIZE)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc -Wl,--exclude-libs,ALL
                        -Wl,--gc-sections)
  endif()
endfunction()
