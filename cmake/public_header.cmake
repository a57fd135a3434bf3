# Makes an installed header of one of the tree: it names the others by where they are installed.
#   cmake -DFROM=src/wav/wav_reader.hpp -DTO=…/corvana/wav/wav_reader.hpp -P public_header.cmake
file(READ ${FROM} text)
string(REGEX REPLACE "#include \"([a-z]+/[a-z0-9_]+\\.hpp)\"" "#include <corvana/\\1>"
       text "${text}")
file(WRITE ${TO} "${text}")
