# The options with which all our targets are compiled.
add_library(zrl_options INTERFACE)
target_compile_options(zrl_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
# Some libraries require -pthread, and a precompiled header fits only targets with the same options.
target_compile_options(zrl_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-pthread>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # clang's warnings differ, and change with each release
  target_compile_options(zrl_options INTERFACE -Werror)
  # When it optimises, it reports faults in the standard library's strings that do not exist.
  target_compile_options(zrl_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endif()
target_include_directories(zrl_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(ZRL_SANITIZE)
  target_compile_options(zrl_options INTERFACE -fsanitize=${ZRL_SANITIZE} -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
  target_link_options(zrl_options INTERFACE -fsanitize=${ZRL_SANITIZE})
endif()

if(ZRL_FUZZ)
  target_compile_options(zrl_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# zrl_precompile(TARGET HEADER...) precompiles the headers of libraries that most files of a target include.
# ccache handles them only with the variables that script/environment sets.
function(zrl_precompile target)
  if(CMAKE_DISABLE_PRECOMPILE_HEADERS)
    return()
  endif()
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
  target_precompile_headers(${target} PRIVATE ${ARGN})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    zrl_checksum(${target} ${ARGN})
  endif()
endfunction()

# clang's precompiled headers hold the path of the build folder, so that no two are equal. ccache takes the checksum of
# what went into them, which lies beside them, in their place; and it must see no other path that it can't make relative.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(CMAKE_CXX_COMPILE_OPTIONS_USE_PCH -include-pch <PCH_FILE>)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Xclang$<SEMICOLON>-fno-pch-timestamp>)
endif()

function(zrl_checksum target)
  set(text "")
  foreach(header IN LISTS ARGN)
    string(APPEND text "#include ${header}\n")
  endforeach()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${target}.dir)
  file(WRITE ${folder}/headers.cpp "${text}")
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 -E -P ${folder}/headers.cpp
    OUTPUT_VARIABLE preprocessed COMMAND_ERROR_IS_FATAL ANY)
  string(SHA256 sum "${preprocessed} ${CMAKE_CXX_COMPILER_VERSION}")
  file(CONFIGURE OUTPUT ${folder}/cmake_pch.hxx.pch.sum CONTENT "${sum}")
endfunction()

# zrl_library_headers(NAME HEADER...) and zrl_program_headers(NAME HEADER...) precompile headers once for all
# targets for which zrl_reuse(TARGET NAME) is called. Libraries and programs need separate ones, as they are
# compiled with different options for position-independent code.
function(zrl_library_headers name)
  file(CONFIGURE OUTPUT ${name}.cpp CONTENT "")
  add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE zrl_options)
  zrl_precompile(${name} ${ARGN})
endfunction()

function(zrl_program_headers name)
  file(CONFIGURE OUTPUT ${name}.cpp CONTENT "int main() {}\n")
  add_executable(${name} ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE zrl_options)
  zrl_precompile(${name} ${ARGN})
endfunction()

function(zrl_reuse target name)
  if(NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()

# zrl_outer(TARGET) is for the sources around the large header libraries of the network and the command line. Where
# sanitizers are built in, optimising those takes longer than running the result ever does.
function(zrl_outer target)
  if(ZRL_SANITIZE AND NOT ZRL_FUZZ)
    target_compile_options(${target} PRIVATE -O0 -g0)
    set_target_properties(${target} PROPERTIES DISABLE_PRECOMPILE_HEADERS ON)
  endif()
endfunction()

# zrl_reuse_below(FOLDER NAME) calls zrl_reuse for all libraries of a folder and its subfolders that have no
# precompiled headers of their own and may have some.
function(zrl_reuse_below folder name)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    get_target_property(own ${target} PRECOMPILE_HEADERS)
    get_target_property(none ${target} DISABLE_PRECOMPILE_HEADERS)
    if(type MATCHES "^(STATIC|SHARED|OBJECT)_LIBRARY$" AND NOT own AND NOT none AND NOT target STREQUAL name)
      zrl_reuse(${target} ${name})
    endif()
  endforeach()
  get_property(folders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder IN LISTS folders)
    zrl_reuse_below(${subfolder} ${name})
  endforeach()
endfunction()

# zrl_versioned(TARGET) gives a library that is installed its version and include folder. Until version 1 every
# minor version may change the interface, so the soname includes it.
function(zrl_versioned target)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    INSTALL_RPATH $ORIGIN)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:include/zrlconfig>)
endfunction()
