# Flags for every target of the project, kept in one interface library.
add_library(corvana_compiler INTERFACE)
target_compile_options(corvana_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CORVANA_WARNINGS_AS_ERRORS)
  target_compile_options(corvana_compiler INTERFACE -Werror)
endif()
target_include_directories(corvana_compiler INTERFACE ${PROJECT_SOURCE_DIR}/src)
# Nobody asks the mathematics for errno and traps: rounding then takes instructions instead of calls.
target_compile_options(corvana_compiler INTERFACE -fno-math-errno -fno-trapping-math)
# Files above 2 GB and dates after 2038 on 32-bit systems too.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_definitions(corvana_compiler INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()

# For programs that are started for one file after the other: a shared C++ library takes a quarter of
# the time until main. The sanitizers take the place of its functions, and need it shared.
add_library(corvana_quick_start INTERFACE)
if(CORVANA_LINKS_CXX_LIBRARY AND CORVANA_STATIC_CXX AND NOT CORVANA_STATIC AND
   NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  target_link_options(corvana_quick_start INTERFACE ${CORVANA_QUICK_START_OPTIONS})
  # What is left of mathematics (ldexp) is in the C library as well, if the linker looks there first.
  # The compiler would put a plain -lc last.
  target_link_libraries(corvana_quick_start INTERFACE -Wl,-lc)
endif()

# Hardening: programs load at random addresses, their tables of addresses become read-only before
# main, and an overrun of a stack frame or of an object of known size ends the program. The
# sanitizers bring sharper checks of their own. tests/hardening.cmake looks at the results.
if(CORVANA_HARDENING AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  include(CheckCXXCompilerFlag)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  # Nobody can put another function in the place of ours.
  check_cxx_compiler_flag(-fno-semantic-interposition CORVANA_BINDS_ITS_OWN)
  if(CORVANA_BINDS_ITS_OWN)
    add_compile_options(-fno-semantic-interposition)
  endif()
  add_compile_options(-fstack-protector-strong)
  if(CORVANA_LINKS_READ_ONLY_TABLES)
    add_link_options(-Wl,-z,relro,-z,now)
  endif()
  # A distribution's choice stands, whether it is among the flags or the compiler's own.
  include(CheckCXXSourceCompiles)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" type)
  set(CMAKE_REQUIRED_FLAGS "-O2 ${CMAKE_CXX_FLAGS_${type}}")
  set(CMAKE_REQUIRED_QUIET ON)
  unset(CORVANA_FORTIFIED_ALREADY CACHE)
  check_cxx_source_compiles("
    #ifndef _FORTIFY_SOURCE
    #error
    #endif
    int main() {}" CORVANA_FORTIFIED_ALREADY)
  unset(CMAKE_REQUIRED_FLAGS)
  unset(CMAKE_REQUIRED_QUIET)
  if(NOT CORVANA_FORTIFIED_ALREADY)
    add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=3>")
  endif()
endif()
