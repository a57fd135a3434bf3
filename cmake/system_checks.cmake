# What the linker and the system have beyond POSIX. The answers go to the sources as
# definitions CORVANA_HAS_…; without the thing each of them has a way in POSIX alone. Names that
# POSIX knows and that a system writes differently are mended here too.
option(CORVANA_POSIX_ONLY "Take no way but that of POSIX, as if every check had failed" OFF)
include(CheckCXXSourceCompiles)
include(CheckIncludeFileCXX)
include(CheckLinkerFlag)
include(CheckStructHasMember)

# Tables of addresses that become read-only before main.
if(NOT CORVANA_POSIX_ONLY)
  check_linker_flag(CXX -Wl,-z,relro,-z,now CORVANA_LINKS_READ_ONLY_TABLES)
endif()
# The C++ library as a part of programs, and of programs no more than what they use.
set(CORVANA_QUICK_START_OPTIONS -static-libstdc++ -static-libgcc -Wl,--gc-sections,--as-needed)
if(NOT CORVANA_POSIX_ONLY)
  check_linker_flag(CXX "${CORVANA_QUICK_START_OPTIONS}" CORVANA_LINKS_CXX_LIBRARY)
endif()
if(CORVANA_FORMATS_ONLY)
  return()
endif()

add_library(corvana_system INTERFACE)

# corvana_system_check(NAME PROGRAM): whether the program can be built.
function(corvana_system_check name program)
  set(found 0)
  if(NOT CORVANA_POSIX_ONLY)
    check_cxx_source_compiles("${program}" CORVANA_HAS_${name})
    if(CORVANA_HAS_${name})
      set(found 1)
    endif()
  endif()
  target_compile_definitions(corvana_system INTERFACE CORVANA_HAS_${name}=${found})
endfunction()

corvana_system_check(FALLOCATE "
  #include <fcntl.h>
  int main() { return ::fallocate(0, FALLOC_FL_KEEP_SIZE, 0, 1); }")
corvana_system_check(MADVISE "
  #include <sys/mman.h>
  int main() { return ::madvise(nullptr, 0, MADV_DONTNEED); }")
corvana_system_check(RENAMEAT2 "
  #include <cstdio>
  int main() { return ::renameat2(0, \"\", 0, \"\", RENAME_NOREPLACE); }")
corvana_system_check(MEMFD "
  #include <sys/mman.h>
  int main() { return ::memfd_create(\"\", MFD_CLOEXEC); }")
corvana_system_check(ENTRY_TYPES "
  #include <dirent.h>
  int main() { return dirent{}.d_type == DT_UNKNOWN ? DT_DIR : 0; }")
corvana_system_check(NAMED_THREADS "
  #include <pthread.h>
  int main() { return ::pthread_setname_np(::pthread_self(), \"\"); }")
corvana_system_check(ERROR_NAMES "
  #include <cstring>
  int main() { return ::strerrorname_np(0) == nullptr; }")
corvana_system_check(MEMORY_FAILURES "
  #include <csignal>
  int main() { return BUS_MCEERR_AR + BUS_MCEERR_AO; }")
corvana_system_check(GNU_C_LIBRARY "
  #include <gnu/libc-version.h>
  int main() { return ::gnu_get_libc_version() == nullptr; }")
corvana_system_check(NOATIME "
  #include <fcntl.h>
  int main() { return O_NOATIME; }")
# What others have under the name of O_PATH says less of links, and their /proc has another layout.
foreach(linux O_PATH LINK_TO_PROGRAM)
  corvana_system_check(${linux} "
    #include <fcntl.h>
    #ifndef __linux__
    #error
    #endif
    int main() { return O_PATH; }")
endforeach()

# macOS.
check_struct_has_member("struct stat" st_mtimespec sys/stat.h CORVANA_HAS_ST_MTIMESPEC LANGUAGE CXX)
if(CORVANA_HAS_ST_MTIMESPEC)
  target_compile_definitions(corvana_system INTERFACE
    st_atim=st_atimespec st_mtim=st_mtimespec st_ctim=st_ctimespec)
endif()
check_include_file_cxx(xlocale.h CORVANA_HAS_XLOCALE_H)
if(CORVANA_HAS_XLOCALE_H)
  target_compile_options(corvana_system INTERFACE "SHELL:-include xlocale.h")
endif()
