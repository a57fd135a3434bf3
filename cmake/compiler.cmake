# Flags for every target of the project, kept in one interface library.
add_library(corvana_compiler INTERFACE)
target_compile_options(corvana_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CORVANA_WARNINGS_AS_ERRORS)
  target_compile_options(corvana_compiler INTERFACE -Werror)
endif()
target_include_directories(corvana_compiler INTERFACE ${PROJECT_SOURCE_DIR}/src)
