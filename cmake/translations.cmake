# Compiles po/DOMAIN/LANGUAGE.po into the folder where gettext looks for catalogues:
# beside the programs in the build tree, below share/locale when installed.
find_program(MSGFMT msgfmt)
set(CORVANA_BUILD_LOCALE_DIR ${PROJECT_BINARY_DIR}/locale)

if(NOT MSGFMT)
  add_custom_target(corvana_translations)
  message(STATUS "msgfmt is not installed: texts stay English (Debian: apt-get install gettext)")
  return()
endif()

file(GLOB catalogues RELATIVE ${PROJECT_SOURCE_DIR}/po CONFIGURE_DEPENDS
     ${PROJECT_SOURCE_DIR}/po/*/*.po)
foreach(catalogue ${catalogues})
  get_filename_component(domain ${catalogue} DIRECTORY)
  get_filename_component(language ${catalogue} NAME_WE)
  set(folder ${language}/LC_MESSAGES)
  set(compiled ${CORVANA_BUILD_LOCALE_DIR}/${folder}/${domain}.mo)
  add_custom_command(OUTPUT ${compiled}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CORVANA_BUILD_LOCALE_DIR}/${folder}
    COMMAND ${MSGFMT} --check -o ${compiled} ${PROJECT_SOURCE_DIR}/po/${catalogue}
    DEPENDS ${PROJECT_SOURCE_DIR}/po/${catalogue} VERBATIM)
  list(APPEND compiled_catalogues ${compiled})
  # The texts of the window alone, and those that it shares with the command line program.
  if(NOT domain STREQUAL "Vantor")
    install(FILES ${compiled} DESTINATION ${CMAKE_INSTALL_LOCALEDIR}/${folder} COMPONENT cli)
  elseif(CORVANA_BUILDS_WINDOW)
    install(FILES ${compiled} DESTINATION ${CMAKE_INSTALL_LOCALEDIR}/${folder} COMPONENT window)
  endif()
endforeach()
add_custom_target(corvana_translations ALL DEPENDS ${compiled_catalogues})
