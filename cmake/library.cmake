# The library for other programs: `development` installs headers, the static library and the
# packages for CMake and pkg-config, `library` the shared one of src/c, where there can be one.

# What programs include, and what that includes. tests/installed_package compiles each by itself.
set(public_headers
  aiff/aiff_format.hpp
  aiff/aiff_reader.hpp
  aiff/aiff_writer.hpp
  convert/carry_out.hpp
  convert/conversion_plan.hpp
  convert/detect_format.hpp
  convert/plan_aiff_to_wav.hpp
  convert/plan_conversion.hpp
  convert/plan_wav_to_aiff.hpp
  convert/sample_kernels.hpp
  inspect/chunk_list.hpp
  inspect/file_description.hpp
  vocabulary/bytes.hpp
  vocabulary/chunks.hpp
  vocabulary/conversion_options.hpp
  vocabulary/errors.hpp
  vocabulary/failure.hpp
  vocabulary/language.hpp
  vocabulary/messages.hpp
  vocabulary/note_name.hpp
  vocabulary/sample_encoding.hpp
  vocabulary/streams.hpp
  vocabulary/warnings.hpp
  wav/record_view.hpp
  wav/wav_format.hpp
  wav/wav_reader.hpp
  wav/wav_writer.hpp)
set(public_include ${PROJECT_BINARY_DIR}/include)
foreach(header IN LISTS public_headers)
  set(made ${public_include}/corvana/${header})
  add_custom_command(OUTPUT ${made}
    COMMAND ${CMAKE_COMMAND} -DFROM=${CMAKE_CURRENT_SOURCE_DIR}/${header} -DTO=${made}
            -P ${PROJECT_SOURCE_DIR}/cmake/public_header.cmake
    DEPENDS ${header} ${PROJECT_SOURCE_DIR}/cmake/public_header.cmake VERBATIM)
  list(APPEND made_headers ${made})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${made} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvana/${folder}
          COMPONENT development)
endforeach()
add_custom_target(corvana_headers ALL DEPENDS ${made_headers})

# Its symbols are nobody's business but the program's that it is linked into.
set_target_properties(corvana_formats PROPERTIES
  EXPORT_NAME formats CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
target_compile_features(corvana_formats PUBLIC cxx_std_20)
target_include_directories(corvana_formats INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS corvana_formats EXPORT Corvana ARCHIVE COMPONENT development)

# corvana_install_pkgconfig(NAME LIBRARY DESCRIPTION): finds itself wherever the tree is moved to.
function(corvana_install_pkgconfig name library description)
  set(to_prefix ${CMAKE_INSTALL_PREFIX})
  cmake_path(RELATIVE_PATH to_prefix BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
  set(includedir \${prefix})
  cmake_path(APPEND includedir ${CMAKE_INSTALL_INCLUDEDIR})  # which may be an absolute path
  set(libdir \${prefix})
  cmake_path(APPEND libdir ${CMAKE_INSTALL_LIBDIR})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT development)
endfunction()
corvana_install_pkgconfig(corvana-formats corvana_formats
  "reads and converts the sampler metadata of WAV and AIFF files (C++20)")

get_property(shared_libraries GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS)
if(shared_libraries)
  set_target_properties(corvana_formats PROPERTIES POSITION_INDEPENDENT_CODE ON)
  add_subdirectory(c)
endif()

include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Corvana)
install(EXPORT Corvana FILE CorvanaTargets.cmake NAMESPACE Corvana::
        DESTINATION ${package_folder} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/CorvanaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/CorvanaConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/CorvanaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/CorvanaConfig.cmake
              ${PROJECT_BINARY_DIR}/CorvanaConfigVersion.cmake
        DESTINATION ${package_folder} COMPONENT development)
