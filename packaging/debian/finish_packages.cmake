# Run by cpack when the files of all packages are in place: makes of them what Debian expects.
set(here ${CPACK_CORVANA_SOURCES}/packaging/debian)
include(${CPACK_CORVANA_SOURCES}/cmake/change_log.cmake)

# "Copyright (c) HOLDER", an empty line, and the licence.
file(READ ${CPACK_CORVANA_SOURCES}/LICENSE licence)
string(REGEX REPLACE "^.*Copyright \\(c\\) ([^\n]+)\n\n.*$" "\\1" copyright "${licence}")
string(REGEX REPLACE "^.*Copyright [^\n]+\n\n(.*)\n$" "\\1" licence "${licence}")
string(REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REPLACE "\n" "\n " licence " ${licence}")

corvana_read_change_log(${CPACK_CORVANA_SOURCES} releases)
set(changelog)
foreach(release IN LISTS releases)
  string(REPLACE "|" ";" release ${release})
  list(GET release 0 version)
  list(GET release 1 date)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc --rfc-email --date ${date}
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(APPEND changelog "corvana (${version}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; "
    "urgency=medium\n\n  * Corvana ${version}.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${date}\n\n")
endforeach()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(files ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
  set(documents ${files}/share/doc/${package})
  configure_file(${here}/copyright.in ${documents}/copyright @ONLY)
  file(WRITE ${documents}/changelog.Debian "${changelog}")
  execute_process(COMMAND gzip -9 --no-name ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
  if(component STREQUAL "cli")
    # Of what is compiled into the program.
    foreach(library libcli11-dev nlohmann-json3-dev)
      configure_file(/usr/share/doc/${library}/copyright ${documents}/notices/${library} COPYONLY)
    endforeach()
  elseif(component STREQUAL "window")
    # What the system's folders hold KDE trusts as it is.
    file(CHMOD ${files}/share/kio/servicemenus/${CPACK_CORVANA_ID}.desktop
         PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  endif()
endforeach()
