# Run by cpack when the files of all packages are in place: makes of them what Debian expects.
set(here ${CPACK_CORVANA_SOURCES}/packaging/debian)

# "Copyright (c) HOLDER", an empty line, and the licence.
file(READ ${CPACK_CORVANA_SOURCES}/LICENSE licence)
string(REGEX REPLACE "^.*Copyright \\(c\\) ([^\n]+)\n\n.*$" "\\1" copyright "${licence}")
string(REGEX REPLACE "^.*Copyright [^\n]+\n\n(.*)\n$" "\\1" licence "${licence}")
string(REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REPLACE "\n" "\n " licence " ${licence}")

file(STRINGS ${CPACK_CORVANA_SOURCES}/CHANGELOG.md releases REGEX "^## \\[[0-9]")
set(changelog)
foreach(release IN LISTS releases)
  string(REGEX MATCH "\\[(.*)\\] - (.*)" release "${release}")
  set(version ${CMAKE_MATCH_1})
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc --rfc-email --date ${CMAKE_MATCH_2}
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(APPEND changelog "corvana (${version}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; "
    "urgency=medium\n\n  * Corvana ${version}.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${date}\n\n")
endforeach()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(files ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
  set(documents ${files}/share/doc/${package})
  configure_file(${here}/copyright.in ${documents}/copyright @ONLY NO_SOURCE_PERMISSIONS)
  file(WRITE ${documents}/changelog.Debian "${changelog}")
  configure_file(${CPACK_CORVANA_SOURCES}/CHANGELOG.md ${documents}/changelog COPYONLY
                 NO_SOURCE_PERMISSIONS)
  file(GLOB_RECURSE manuals ${files}/share/man/*)
  execute_process(
    COMMAND gzip -9 --no-name ${documents}/changelog.Debian ${documents}/changelog ${manuals}
    COMMAND_ERROR_IS_FATAL ANY)
  if(component STREQUAL "cli")
    # Of what is compiled into the program.
    set(libraries libcli11-dev nlohmann-json3-dev)
    if(CPACK_CORVANA_CXX_LIBRARY)  # whose licence has an exception for programs made with the compiler
      file(REAL_PATH ${CPACK_CORVANA_CXX_LIBRARY} library)
      execute_process(COMMAND dpkg-query --search ${library} OUTPUT_VARIABLE owner
                      COMMAND_ERROR_IS_FATAL ANY)
      string(REGEX REPLACE ":.*" "" owner ${owner})
      list(APPEND libraries ${owner})
    endif()
    foreach(library IN LISTS libraries)
      configure_file(/usr/share/doc/${library}/copyright ${documents}/notices/${library} COPYONLY
                     NO_SOURCE_PERMISSIONS)
    endforeach()
    # Where Debian's zsh looks for completions of packages.
    if(EXISTS ${files}/share/zsh/site-functions)
      file(RENAME ${files}/share/zsh/site-functions ${files}/share/zsh/vendor-completions)
    endif()
  elseif(component STREQUAL "window")
    # What the system's folders hold KDE trusts as it is.
    file(CHMOD ${files}/share/kio/servicemenus/${CPACK_CORVANA_ID}.desktop
         PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  endif()
endforeach()
