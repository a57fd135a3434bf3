# Debian packages, made by cpack of the components that the install rules name. scripts/package
# runs it.
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME corvana)
set(CPACK_PACKAGE_CONTACT "The Corvana developers <developers@corvana.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish_packages.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish_library.cmake)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 0corvana1)  # older than any of Debian's own
set(CPACK_DEBIAN_PACKAGE_SOURCE corvana)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(this_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # every package has its own
set(purpose "
Corvana converts sampled instruments between WAV and AIFF, in both directions,
and keeps what makes a sample an instrument: loops, markers and cue points,
root key, tuning, gain, key and velocity ranges. It warns of whatever the
other format cannot hold.
")

set(CPACK_DEBIAN_CLI_PACKAGE_NAME corvana-cli)
set(CPACK_DEBIAN_CLI_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_CLI_DESCRIPTION "converter for sampled instruments (command line)${purpose}
This package holds the program for scripts and large libraries. It also shows
what samples hold, finds what is wrong with them and proves conversions.")

# The texts that both programs share are in the other package.
set(CPACK_DEBIAN_WINDOW_PACKAGE_NAME corvana)
set(CPACK_DEBIAN_WINDOW_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_WINDOW_PACKAGE_DEPENDS "corvana-cli ${this_version}")
# Texts of the toolkit, the desktop's own panels, Wayland, and whom the update check may trust.
string(JOIN ", " CPACK_DEBIAN_WINDOW_PACKAGE_RECOMMENDS
  qt6-translations-l10n "qt6-gtk-platformtheme | qt6-xdgdesktopportal-platformtheme"
  qt6-wayland ca-certificates)
set(CPACK_DEBIAN_WINDOW_PACKAGE_SUGGESTS python3-nautilus)
set(CPACK_DEBIAN_WINDOW_DESCRIPTION "converter for sampled instruments${purpose}
This package holds the window to drop files and folders on, and the entries in
the menus of file managers.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libcorvana1)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "library for sampled instruments in WAV and AIFF${purpose}
This package holds the shared library with its C interface.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libcorvana-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libcorvana1 ${this_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "library for sampled instruments in WAV and AIFF (development)${purpose}
This package holds what programs are built with that use the library: headers,
the static library, and files for CMake and pkg-config.")

get_cmake_property(components COMPONENTS)
set(CPACK_COMPONENTS_ALL)
foreach(component cli window library development)
  if(component IN_LIST components)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
  endif()
endforeach()

# For finish_packages.cmake.
set(CPACK_CORVANA_SOURCES ${PROJECT_SOURCE_DIR})
set(CPACK_CORVANA_ID ${CORVANA_ID})
if(CORVANA_LINKS_CXX_LIBRARY AND CORVANA_STATIC_CXX)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libstdc++.a
                  OUTPUT_VARIABLE CPACK_CORVANA_CXX_LIBRARY OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
include(CPack)
