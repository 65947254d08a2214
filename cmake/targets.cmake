# What every target of ours is compiled with.
add_library(zrl_options INTERFACE)
target_compile_options(zrl_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(NOT ZRL_FUZZ)  # whose compiler has warnings of its own
  target_compile_options(zrl_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
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

# zrl_versioned(TARGET) makes a library one that is installed. Until version 1 every minor version may change
# the interface.
function(zrl_versioned target)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH $ORIGIN)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:include/zrlconfig>)
endfunction()
