# Flags shared by the library, its tests, examples and benchmarks.

# Numerics: results are fixed to the last bit in places (summation orders, strict versus
# inclusive tolerance tests), so floating-point contraction is off and fast-math never on.
add_library(vogebasic_flags INTERFACE)
target_compile_options(vogebasic_flags INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang>:-ffp-contract=off -fno-fast-math>)

if(VOGEBASIC_SANITIZE)
  set(_vogebasic_san -fsanitize=address,undefined -fno-sanitize-recover=all
                     -fno-omit-frame-pointer)
  target_compile_options(vogebasic_flags INTERFACE ${_vogebasic_san})
  target_link_options(vogebasic_flags INTERFACE -fsanitize=address,undefined)
endif()

if(VOGEBASIC_TSAN)
  target_compile_options(vogebasic_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(vogebasic_flags INTERFACE -fsanitize=thread)
endif()

# The fuzz targets need clang's libFuzzer; the library is instrumented for it and for the
# address and undefined-behaviour checks, the targets link the fuzzer's driver.
if(VOGEBASIC_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "VOGEBASIC_FUZZ needs clang (libFuzzer); use the fuzz preset")
  endif()
  target_compile_options(vogebasic_flags INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vogebasic_flags INTERFACE -fsanitize=address,undefined)
endif()

# Warnings for our own code only (never exported to consumers).
add_library(vogebasic_warnings INTERFACE)
target_compile_options(vogebasic_warnings INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall -Wextra -Wpedantic -Wshadow -Wmissing-declarations
  -Wconversion -Wno-sign-conversion>)
if(VOGEBASIC_WERROR)
  target_compile_options(vogebasic_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU,Clang>:-Werror>)
endif()
