# What the compiler's linker and the system have beyond POSIX. The answers go to the sources as
# definitions CORVANA_HAS_…; without the thing each of them has a way in POSIX alone. Names that
# POSIX knows and that a system writes differently are mended here too.
option(CORVANA_POSIX_ONLY "Take no way but that of POSIX, as if every check had failed" OFF)
include(CheckCXXSourceCompiles)
include(CheckCXXSymbolExists)
include(CheckIncludeFileCXX)
include(CheckLinkerFlag)
include(CheckStructHasMember)

# Tables of addresses that become read-only before main.
if(NOT CORVANA_POSIX_ONLY)
  check_linker_flag(CXX -Wl,-z,relro,-z,now CORVANA_LINKS_READ_ONLY_TABLES)
endif()
if(CORVANA_FORMATS_ONLY)
  return()
endif()

add_library(corvana_system INTERFACE)

# corvana_system_check(NAME CHECK ARGUMENT…): CHECK gets the arguments and the name of its result.
function(corvana_system_check name check)
  set(found 0)
  if(NOT CORVANA_POSIX_ONLY)
    cmake_language(CALL ${check} ${ARGN} CORVANA_HAS_${name})
    if(CORVANA_HAS_${name})
      set(found 1)
    endif()
  endif()
  target_compile_definitions(corvana_system INTERFACE CORVANA_HAS_${name}=${found})
endfunction()

corvana_system_check(FALLOCATE check_cxx_source_compiles "
  #include <fcntl.h>
  int main() { return ::fallocate(0, FALLOC_FL_KEEP_SIZE, 0, 1); }")
corvana_system_check(RENAMEAT2 check_cxx_source_compiles "
  #include <cstdio>
  int main() { return ::renameat2(0, \"\", 0, \"\", RENAME_NOREPLACE); }")
# Open links and folders that are not to be read. Elsewhere O_PATH says less of links.
corvana_system_check(O_PATH check_cxx_source_compiles "
  #include <fcntl.h>
  #ifndef __linux__
  #error
  #endif
  int main() { return ::open(\"\", O_PATH | O_NOFOLLOW); }")
corvana_system_check(MEMFD check_cxx_symbol_exists memfd_create sys/mman.h)
corvana_system_check(ENTRY_TYPES check_cxx_source_compiles "
  #include <dirent.h>
  int main() { return dirent{}.d_type == DT_UNKNOWN ? DT_DIR : 0; }")
corvana_system_check(NAMED_THREADS check_cxx_source_compiles "
  #include <pthread.h>
  int main() { return ::pthread_setname_np(::pthread_self(), \"\"); }")
corvana_system_check(ERROR_NAMES check_cxx_symbol_exists strerrorname_np cstring)
corvana_system_check(LINK_TO_PROGRAM check_cxx_source_compiles "
  #ifndef __linux__  // /proc/self/exe
  #error
  #endif
  int main() {}")
corvana_system_check(MEMORY_FAILURES check_cxx_symbol_exists BUS_MCEERR_AR csignal)
corvana_system_check(GNU_C_LIBRARY check_cxx_symbol_exists gnu_get_libc_version gnu/libc-version.h)

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
