# Language level, warnings, hardening and instrumentation for every target of this project.
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
# The build tree works wherever it is put. What is installed has no run path: the linker finds its
# libraries in the system's directories or through LD_LIBRARY_PATH.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# Where files can be large anyway, functions of the C library keep their plain names (open, not open64).
add_compile_definitions(_GNU_SOURCE $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:_FILE_OFFSET_BITS=64>)
add_compile_options(
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wformat=2 -Wundef
  -Wcast-align -Wcast-qual -Wdouble-promotion -Wvla -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor> $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual> $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>)
add_link_options(-Wl,--as-needed)

# Hardening. Compilers and architectures support different parts of it: what this one refuses is left
# out. scripts/hardening prints what each file has.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)
set(hardening -fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  list(APPEND hardening -mbranch-protection=standard)
endif()
foreach(option IN LISTS hardening)
  string(MAKE_C_IDENTIFIER "ORV_TAKES${option}" taken)
  set(CMAKE_REQUIRED_FLAGS -Werror)
  check_cxx_compiler_flag(${option} ${taken})
  if(${taken})
    add_compile_options(${option})
  endif()
endforeach()
# Level 3 warns where compiler or libc know only 2. Without optimisation there is none; a distribution
# may have set a level already.
set(CMAKE_REQUIRED_FLAGS "-Werror -O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
check_cxx_source_compiles("#include <stdlib.h>\nint main() {}" ORV_TAKES_FORTIFY_3)
unset(CMAKE_REQUIRED_FLAGS)
add_compile_options(-U_FORTIFY_SOURCE)
if(NOT ORV_SANITIZE)
  add_compile_options($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=$<IF:$<BOOL:${ORV_TAKES_FORTIFY_3}>,3,2>>)
endif()
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)

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

# Nothing is left to the dynamic linker, and the program lies at a random address all the same. A libc
# without start code for that (ARM) has the quick start instead.
set(CMAKE_REQUIRED_LINK_OPTIONS -static-pie)
check_cxx_source_compiles("int main() {}" ORV_TAKES_STATIC_PIE)
unset(CMAKE_REQUIRED_LINK_OPTIONS)
function(orv_link_static target)
  if(ORV_TAKES_STATIC_PIE AND NOT ORV_SANITIZE)
    # Without the property, for which CMake would link with -pie, and that with libraries to load.
    set_property(TARGET ${target} PROPERTY POSITION_INDEPENDENT_CODE)
    target_compile_options(${target} PRIVATE -fPIE)
    target_link_options(${target} PRIVATE -static-pie)
  else()
    orv_link_quick_start(${target})
  endif()
endfunction()
