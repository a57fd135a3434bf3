# Fails when an #include in src/ points upwards or sideways: every folder may use itself and
# what stands below it, only the window's folders know Qt, and only platform/ knows the system.
#   cmake -DSOURCES=…/src -P layering.cmake

cmake_minimum_required(VERSION 3.25)

# The pure library: standard C++ only.
set(vocabulary_uses vocabulary)
set(wav_uses wav vocabulary)
set(aiff_uses aiff vocabulary)
set(convert_uses convert wav aiff vocabulary)
set(verify_uses verify wav aiff vocabulary)
set(inspect_uses inspect wav aiff vocabulary)
set(check_uses check inspect wav aiff vocabulary)
set(c_uses c convert inspect wav aiff vocabulary)
set(json_uses json convert check inspect verify wav aiff vocabulary)
# The engine.
set(platform_uses platform vocabulary)
set(output_uses output convert verify platform vocabulary)
set(batch_uses batch output convert verify platform vocabulary)
# What stands on it.
set(update_uses update vocabulary platform)
set(update_window_uses update_window update vocabulary platform)
set(cli_uses cli batch output json convert check inspect verify platform vocabulary)
set(app_uses app update_window batch vocabulary platform)
set(folders_with_toolkit app update_window)
set(pure_folders vocabulary wav aiff convert inspect check verify c json)
set(system_header "\\.h>|<csignal>")
set(c_header "<std(def|int)\\.h>")  # the same everywhere
set(impure_header "<(atomic|c?locale|condition_variable|filesystem|fstream|mutex|thread)>")

file(GLOB_RECURSE sources RELATIVE ${SOURCES} ${SOURCES}/*.h ${SOURCES}/*.hpp ${SOURCES}/*.cpp)
if(NOT sources)
  message(FATAL_ERROR "No sources below ${SOURCES}")
endif()
foreach(source ${sources})
  string(REGEX REPLACE "/.*" "" folder ${source})
  if(NOT DEFINED ${folder}_uses)
    message(SEND_ERROR "${source}: folder ${folder} has no place in the layers")
  endif()
  file(STRINGS ${SOURCES}/${source} includes REGEX "^#include")
  foreach(include ${includes})
    if(include MATCHES "\"([a-z0-9_]+)/" AND NOT CMAKE_MATCH_1 IN_LIST ${folder}_uses)
      message(SEND_ERROR "${source} must not use ${CMAKE_MATCH_1}/: ${include}")
    elseif(include MATCHES "<Q" AND NOT folder IN_LIST folders_with_toolkit)
      message(SEND_ERROR "${source} must not use Qt: ${include}")
    elseif(include MATCHES "${system_header}" AND NOT include MATCHES "${c_header}" AND
           NOT folder STREQUAL platform)
      message(SEND_ERROR "${source} must leave the system to platform/: ${include}")
    elseif(include MATCHES "${impure_header}" AND folder IN_LIST pure_folders)
      message(SEND_ERROR "${source} must do without files, threads and locales: ${include}")
    endif()
  endforeach()
endforeach()
