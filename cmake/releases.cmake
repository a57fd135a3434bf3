# The change log is the one place of released versions and their dates. Gives CORVANA_RELEASE_DATE,
# that of the newest, and CORVANA_RELEASES, all of them as the desktop's metadata lists them.
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md releases REGEX "^## \\[[0-9]")
list(GET releases 0 newest)
string(REGEX MATCH "^## \\[(.*)\\] - (.*)$" newest "${newest}")
set(CORVANA_RELEASE_DATE ${CMAKE_MATCH_2})
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "The newest release in CHANGELOG.md is '${CMAKE_MATCH_1}', the project's "
                      "version ${PROJECT_VERSION}")
endif()
list(TRANSFORM releases REPLACE "^## \\[(.*)\\] - (.*)$"
     "    <release version=\"\\1\" date=\"\\2\"/>")
list(JOIN releases "\n" CORVANA_RELEASES)
