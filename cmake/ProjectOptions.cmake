# Language level and warnings for every target, by the interface target `zrhttp_options`.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

option(ZRHTTP_CCACHE "Compile through ccache where there is one, as the presets do" OFF)
find_program(CCACHE ccache)
if(ZRHTTP_CCACHE AND CCACHE)
  # Without these the cache takes nothing that uses precompiled headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  endif()
endif()

option(ZRHTTP_FUZZ "Build the fuzz targets with libFuzzer, which takes clang, and no other tests" OFF)
set(ZRHTTP_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize= takes them")

option(ZRHTTP_WERROR "Warnings are errors, as in the presets and in CI" OFF)

add_library(zrhttp_options INTERFACE)
target_compile_options(zrhttp_options INTERFACE
  -Wall -Wextra -Wpedantic $<$<BOOL:${ZRHTTP_WERROR}>:-Werror> -Wshadow -Wconversion
  -Wsign-conversion -Wold-style-cast -Woverloaded-virtual -Wformat=2)
if(ZRHTTP_FUZZ)
  # What is delivered is compiled, and warned about, by the other presets.
  target_compile_options(zrhttp_options INTERFACE -w -fsanitize=fuzzer-no-link)
endif()

# What g++ alone has, and takes for faults that are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 takes a plain text + std::string for overlapping memory when it optimises.
  target_compile_options(zrhttp_options INTERFACE -Wno-restrict)
  if(CMAKE_UNITY_BUILD)
    # Files that are compiled together: it inlines more and sees more of what is not there, and
    # takes what only one file knows for something that its neighbours share. One by one it still
    # warns.
    target_compile_options(zrhttp_options INTERFACE
      -Wno-array-bounds -Wno-stringop-overflow -Wno-subobject-linkage)
  endif()
  if(ZRHTTP_SANITIZE)
    # The sanitizers' own checks confuse the flow analysis behind this warning.
    target_compile_options(zrhttp_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(ZRHTTP_SANITIZE)
  target_compile_options(zrhttp_options INTERFACE
    -fsanitize=${ZRHTTP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zrhttp_options INTERFACE -fsanitize=${ZRHTTP_SANITIZE})
endif()
