# Compiler settings of every target, and the warnings of our own code.

add_library(vant_warnings INTERFACE)
target_compile_options(vant_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

if(WIN32)
  add_compile_definitions(_WIN32_WINNT=0x0601 UNICODE _UNICODE)
  # Programs start on any Windows machine: the runtime is linked in.
  add_link_options(-static)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Doubles are computed as doubles. The old floating-point unit would keep more digits of what lies between.
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-msse2> $<$<COMPILE_LANGUAGE:C,CXX>:-mfpmath=sse>)
  endif()
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Unique symbols would keep the module in memory for ever, whatever dlclose says.
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()

if(VANT_SANITIZE)
  add_compile_options(-fsanitize=${VANT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VANT_SANITIZE})
  if(NOT VANT_FUZZ)
    # Reports name lines. More debug information would only lengthen the build.
    add_compile_options(-g1)
  endif()
  # An interface of another module carries no type information, and need not be made by a C++ compiler at all.
  add_compile_options(-fno-sanitize=vptr)
endif()
if(VANT_FUZZ)
  # The fuzzer is guided by what runs, in the libraries as well.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(VANT_COVERAGE)
  # Many threads count: without atomic counters some counts would be wrong, even negative.
  add_compile_options(--coverage -fprofile-abs-path -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
