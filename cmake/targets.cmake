# What every target of ours is compiled with.
add_library(zrl_options INTERFACE)
target_compile_options(zrl_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Optimising, it finds faults in the standard library's strings that are not there.
  target_compile_options(zrl_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endif()
target_include_directories(zrl_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(ZRL_SANITIZE)
  target_compile_options(zrl_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
  target_link_options(zrl_options INTERFACE -fsanitize=address,undefined)
endif()

if(ZRL_FUZZ)
  target_compile_options(zrl_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# zrl_precompile(TARGET HEADER...) precompiles the headers that most files of a target include.
# ccache needs to be told to look through them (script/build sets CCACHE_SLOPPINESS).
function(zrl_precompile target)
  if(CMAKE_DISABLE_PRECOMPILE_HEADERS)
    return()
  endif()
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
  target_precompile_headers(${target} PRIVATE ${ARGN})
endfunction()
