# Fails when an #include in src/ points upwards or sideways: every folder may use itself and
# what stands below it, only the window's folders know Qt, and only platform/ knows the system.
#   cmake -DSOURCES=…/src -P layering.cmake

cmake_minimum_required(VERSION 3.25)

set(platform_uses platform)
set(vocabulary_uses vocabulary platform)
set(wav_uses wav vocabulary platform)
set(aiff_uses aiff vocabulary platform)
set(convert_uses convert wav aiff vocabulary platform)
set(batch_uses batch convert vocabulary platform)
set(update_uses update vocabulary platform)
set(cli_uses cli batch vocabulary platform)
set(app_uses app update batch vocabulary platform)
set(folders_with_toolkit app update)
string(CONCAT system_header "<((arpa|net|netinet|sys)/|csignal>|(aio|dirent|dlfcn|fcntl|fnmatch|"
       "ftw|glob|grp|iconv|langinfo|libgen|libintl|mqueue|netdb|poll|pthread|pwd|regex|sched|"
       "semaphore|signal|spawn|strings|syslog|termios|unistd|utime|wordexp)\\.h>)")

file(GLOB_RECURSE sources RELATIVE ${SOURCES} ${SOURCES}/*.hpp ${SOURCES}/*.cpp)
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
    elseif(include MATCHES "${system_header}" AND NOT folder STREQUAL platform)
      message(SEND_ERROR "${source} must leave the system to platform/: ${include}")
    endif()
  endforeach()
endforeach()
