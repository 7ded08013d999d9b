# All compiler flags: every target links Vantor::Flags.
add_library(VantorFlags INTERFACE)
add_library(Vantor::Flags ALIAS VantorFlags)

option(VANTOR_WERROR "Treat warnings as errors" OFF)
option(VANTOR_PLAIN "Compile each file by itself, without precompiled headers" OFF)
option(VANTOR_FUZZ "Build the fuzz targets for libFuzzer; needs clang" OFF)
set(VANTOR_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

target_compile_features(VantorFlags INTERFACE cxx_std_20)
target_compile_options(VantorFlags INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -fvisibility=hidden -fvisibility-inlines-hidden)
target_compile_definitions(VantorFlags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CONTEXTLESS_CONNECT QT_STRICT_ITERATORS
  QT_NO_KEYWORDS QT_NO_URL_CAST_FROM_STRING)

if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # Clang also reports names that a static function or a lambda cannot mean.
  target_compile_options(VantorFlags INTERFACE -Wshadow)
  # KiB. GCC's own garbage collection takes a tenth of the time to compile a large file; no file needs more than this.
  target_compile_options(VantorFlags INTERFACE --param ggc-min-heapsize=1048576)
endif()
find_program(LD_GOLD ld.gold)
if(LD_GOLD)
  target_link_options(VantorFlags INTERFACE -fuse-ld=gold) # links in a third of the time
endif()
if(VANTOR_WERROR)
  target_compile_options(VantorFlags INTERFACE -Werror)
endif()
if(VANTOR_SANITIZE)
  # GCC 12 reports false uninitialised values where it instruments memory accesses.
  target_compile_options(VantorFlags INTERFACE
    -fsanitize=${VANTOR_SANITIZE} -fno-omit-frame-pointer
    # These check every access and triple the compile time: targets enable them with vantor_check_accesses.
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VANTOR_CHECK_ACCESSES>>>:-fno-sanitize=null$<COMMA>object-size$<COMMA>alignment$<COMMA>vptr>
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(VantorFlags INTERFACE -fsanitize=${VANTOR_SANITIZE})
endif()

# Checks null, alignment, size and dynamic type at every access of a target in a sanitized build.
function(vantor_check_accesses target)
  set_target_properties(${target} PROPERTIES VANTOR_CHECK_ACCESSES ON)
endfunction()

# Compiles a target of windows, which wait for people, in a quarter less time.
function(vantor_optimize_lightly target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O1>)
endfunction()

# vantor_compile_together(TARGET FILES): compiles FILES of a target's files at a time, because parsing headers is most of
# the work. Names in anonymous namespaces must then differ within the target.
function(vantor_compile_together target files)
  if(VANTOR_PLAIN)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${files})
  # The unity file includes the others: GCC treats their anonymous namespaces as if they came from headers.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()
