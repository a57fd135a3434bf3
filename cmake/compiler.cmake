# Flags for every target of the project, kept in one interface library.
add_library(corvana_compiler INTERFACE)
target_compile_options(corvana_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CORVANA_WARNINGS_AS_ERRORS)
  target_compile_options(corvana_compiler INTERFACE -Werror)
endif()
target_include_directories(corvana_compiler INTERFACE ${PROJECT_SOURCE_DIR}/src)

# Hardening: programs load at random addresses, their tables of addresses become read-only before
# main, and an overrun of a stack frame or of an object of known size ends the program. The
# sanitizers bring sharper checks of their own. tests/hardening.cmake looks at the results.
if(CORVANA_HARDENING AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  # Libraries here are linked into programs only: nobody can put another function in their place.
  add_compile_options(-fno-semantic-interposition -fstack-protector-strong)
  add_link_options(-Wl,-z,relro,-z,now)
  # A distribution that asks for more gets it.
  if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
    add_compile_options(
      "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  endif()
endif()
