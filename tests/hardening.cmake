# Whether built programs carry the hardening that cmake/compiler.cmake asks for.
# Usage: cmake -DREADELF=… -DPROGRAMS=…,… -P hardening.cmake
string(REPLACE "," ";" PROGRAMS "${PROGRAMS}")
foreach(program IN LISTS PROGRAMS)
  execute_process(COMMAND ${READELF} --wide --file-header --program-headers --dynamic --dyn-syms
                  ${program} OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
  foreach(mark
      "Type: +DYN.*Flags: [A-Z ]*PIE"  # loaded at a random address
      "GNU_RELRO"                      # read-only after relocation …
      "Flags: [A-Z ]*NOW"              # … with every address bound by then
      "GNU_STACK[ 0-9a-fx]+ RW "       # no code on the stack
      "__stack_chk_fail"               # stack protector
      "__[a-z]+_chk@")                 # fortified library calls
    if(NOT found MATCHES "${mark}")
      message(SEND_ERROR "${program} lacks ${mark}")
    endif()
  endforeach()
endforeach()
