# SQLite 3.7.0 to 3.51.2 can corrupt a write-ahead-log database when two connections write and checkpoint at once;
# therefore one fixed version in every build, never the system's. tools/setup fetches it.
set(ZELK_CACHE "$ENV{ZELK_CACHE}" CACHE PATH "Folder into which tools/setup fetches what Debian does not package")
if(NOT ZELK_CACHE)
  if(DEFINED ENV{XDG_CACHE_HOME})
    set(ZELK_CACHE "$ENV{XDG_CACHE_HOME}/zelk98" CACHE PATH "" FORCE)
  else()
    set(ZELK_CACHE "$ENV{HOME}/.cache/zelk98" CACHE PATH "" FORCE)
  endif()
endif()
set(sqlite_dir "${ZELK_CACHE}/sqlite-3.53.2")
if(NOT EXISTS "${sqlite_dir}/sqlite3.c")
  message(FATAL_ERROR "${sqlite_dir}/sqlite3.c fehlt. Bitte zuerst tools/setup aufrufen.")
endif()

add_library(sqlite3 STATIC "${sqlite_dir}/sqlite3.c")
target_include_directories(sqlite3 SYSTEM INTERFACE "${sqlite_dir}")
# No memory mapping: a disk that fails would be a signal, which ends the host, in place of an error.
target_compile_definitions(sqlite3 PRIVATE
  SQLITE_THREADSAFE=2
  SQLITE_DQS=0
  SQLITE_DEFAULT_MEMSTATUS=0
  SQLITE_MAX_MMAP_SIZE=0
  SQLITE_LIKE_DOESNT_MATCH_BLOBS
  SQLITE_OMIT_DEPRECATED
  SQLITE_OMIT_LOAD_EXTENSION
  SQLITE_OMIT_SHARED_CACHE
  SQLITE_USE_ALLOCA)
target_compile_options(sqlite3 PRIVATE -O2 -w)
if(ZELK_SANITIZE)
  # It is the code around it that is looked at, and instrumented in full it takes two minutes to compile.
  target_compile_options(sqlite3 PRIVATE -O1 -fno-sanitize=undefined)
endif()
if(NOT WIN32)
  target_link_libraries(sqlite3 PRIVATE m)
endif()
