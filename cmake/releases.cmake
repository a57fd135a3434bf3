# The change log is the one place of released versions and their dates. Gives CORVANA_RELEASE_DATE,
# that of the newest, and CORVANA_RELEASES, all of them with their notes as the desktop's metadata
# lists them.
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md releases REGEX "^## \\[[0-9]")
list(GET releases 0 newest)
string(REGEX MATCH "^## \\[(.*)\\] - (.*)$" newest "${newest}")
set(CORVANA_RELEASE_DATE ${CMAKE_MATCH_2})
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "The newest release in CHANGELOG.md is '${CMAKE_MATCH_1}', the project's "
                      "version ${PROJECT_VERSION}")
endif()

# In the change log, a release is headings and items, which go on in indented lines.
file(READ ${PROJECT_SOURCE_DIR}/CHANGELOG.md CORVANA_RELEASES)
string(FIND "${CORVANA_RELEASES}" "\n## [${PROJECT_VERSION}]" begin)
string(SUBSTRING "${CORVANA_RELEASES}" ${begin} -1 CORVANA_RELEASES)
function(corvana_replace pattern text)
  string(REGEX REPLACE "${pattern}" "${text}" CORVANA_RELEASES "${CORVANA_RELEASES}")
  set(CORVANA_RELEASES "${CORVANA_RELEASES}" PARENT_SCOPE)
endfunction()
corvana_replace("&" "&amp;")
corvana_replace("<" "&lt;")
corvana_replace("\n  +([^\n]*)" " \\1")
corvana_replace("`([^`\n]*)`" "<code>\\1</code>")
corvana_replace("\n- ([^\n]*)" "\n          <li>\\1</li>")
corvana_replace("\n### ([^\n]*)\n" "\n        <p>\\1</p>\n        <ul>")
corvana_replace("</li>\n(\n|$)" "</li>\n        </ul>\n")
set(end "      </description>\n    </release>\n")
corvana_replace("\n*## \\[([^]\n]*)\\] - ([^\n]*)\n"
  "\n${end}    <release version=\"\\1\" date=\"\\2\">\n      <description>")
string(REPLACE "^\n${end}" "" CORVANA_RELEASES "^${CORVANA_RELEASES}${end}")
string(STRIP "${CORVANA_RELEASES}" CORVANA_RELEASES)
