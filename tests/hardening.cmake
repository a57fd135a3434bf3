# Whether built programs carry the hardening that cmake/compiler.cmake asks for.
# Usage: cmake -DREADELF=… -DCOMPILER=… -DPROGRAMS=…,… -P hardening.cmake
string(REPLACE "," ";" PROGRAMS "${PROGRAMS}")
set(marks
  "Type: +DYN.*FLAGS_1\\)[^\n]* PIE"  # loaded at a random address
  "GNU_RELRO"                         # read-only after relocation …
  "FLAGS_1\\)[^\n]* NOW"              # … with every address bound by then
  "GNU_STACK[ 0-9a-fx]+ RW "          # no code on the stack
  "__stack_chk_fail")                 # stack protector
if(COMPILER STREQUAL "GNU")  # Clang finds nothing here that it could not prove to be right
  list(APPEND marks "__[a-z]+_chk@")  # fortified library calls
endif()
foreach(program IN LISTS PROGRAMS)
  execute_process(COMMAND ${READELF} --wide --file-header --program-headers --dynamic --dyn-syms
                  ${program} OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
  foreach(mark IN LISTS marks)
    if(NOT found MATCHES "${mark}")
      message(SEND_ERROR "${program} lacks ${mark}")
    endif()
  endforeach()
endforeach()
