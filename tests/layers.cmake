# Checks the includes of src/ against the layers, from the lowest: core/text, core/contracts, core, net, the pages
# with scripting and service, catalogue, host. Components may include the two lowest layers only.
#
# A line lists the folders (ending in "/") and single headers that the files of a folder may include. Every file may
# include its own header; a folder whose files may include each other lists itself. Pages may not: the headers that
# pages share are listed one by one, so that no page depends on another. So are the headers of a component that
# another one uses. "components/*/*.h" are the public headers, each with the name of its folder. It is a fault if a
# component has none, or if one of its files is outside the namespace zrl::<name>.
set(rules
  "core/text/       : core/text/"
  "core/contracts/  : core/contracts/ core/text/"
  "core/            : core/ core/contracts/ core/text/"
  "net/             : net/ core/contracts/ core/text/"
  "pages/settings/  : core/ core/contracts/ core/text/
                      pages/lists/remote_update.h"
  "pages/lists/     : core/ core/contracts/ core/text/
                      pages/lists/list_page.h pages/lists/remote_update.h pages/lists/transfer_dialog.h
                      pages/tools/composer_dialog.h"
  "pages/logs/      : core/ core/contracts/ core/text/
                      pages/logs/log_page.h pages/logs/archive_lists.h pages/logs/message_rows.h
                      pages/tools/composer_dialog.h"
  "pages/tools/     : core/ core/contracts/ core/text/"
  "pages/traffic/   : core/ core/contracts/ core/text/ pages/traffic/"
  "scripting/vbscript/ : scripting/vbscript/ core/contracts/ core/text/"
  "scripting/       : scripting/ core/ core/contracts/ core/text/
                      scripting/vbscript/engine.h
                      pages/lists/remote_update.h"
  "service/         : core/ core/contracts/ core/text/"
  "catalogue/       : core/ pages/settings/ pages/lists/ pages/logs/ pages/tools/ pages/traffic/ scripting/ service/"
  "components/block_lists/ : components/block_lists/ core/contracts/ core/text/
                      components/dns/dns_answers.h components/dns/ip_address.h"
  "components/      : components/"
  "components/*/    : components/*/ core/contracts/ core/text/"
  "host/sample/     : host/sample/ core/ core/contracts/ core/text/"
  "host/web/        : host/web/ host/ core/ core/contracts/ core/text/ catalogue/"
  "host/command/    : host/command/ host/ host/sample/ core/ core/contracts/ core/text/ catalogue/
                      host/web/web_host.h scripting/vbscript/engine.h scripting/vbscript/source_text.h
                      scripting/console_lookups.h scripting/folder_script_files.h components/pcre2/pcre2.h"
  "host/            : host/ core/ core/contracts/ core/text/ net/ components/*/*.h
                      pages/lists/remote_update.h scripting/vbscript/engine.h"
)

# The folder of a file, in the form that the rules use; folders below vbscript count as vbscript.
function(room_of file result)
  get_filename_component(folder ${file} DIRECTORY)
  string(REGEX REPLACE "^scripting/vbscript/.*" "scripting/vbscript" folder "${folder}")
  set(${result} "${folder}/" PARENT_SCOPE)
endfunction()

function(allowed_for room result)
  foreach(rule IN LISTS rules)
    string(REGEX MATCH "^([^ ]+) *:(.*)$" matched "${rule}")
    set(pattern "${CMAKE_MATCH_1}")
    string(REGEX MATCHALL "[^ \n]+" allowed "${CMAKE_MATCH_2}")
    if(pattern STREQUAL room)
      set(${result} "${allowed}" PARENT_SCOPE)
      return()
    endif()
    string(REPLACE "*" "[a-z0-9_]+" pattern "${pattern}")
    if(room MATCHES "^${pattern}$")
      string(REPLACE "components/*/" "${room}" allowed "${allowed}")
      set(${result} "${allowed}" PARENT_SCOPE)
      return()
    endif()
  endforeach()
  set(${result} "NO_RULE" PARENT_SCOPE)
endfunction()

function(is_allowed included allowed result)
  room_of(${included} room)
  foreach(entry IN LISTS allowed)
    if(entry STREQUAL "components/*/*.h")
      if(included MATCHES "^components/([a-z0-9_]+)/([a-z0-9_]+)\\.h$" AND CMAKE_MATCH_1 STREQUAL CMAKE_MATCH_2)
        set(${result} TRUE PARENT_SCOPE)
        return()
      endif()
      continue()
    endif()
    string(REPLACE "*" "[a-z0-9_]+" pattern "${entry}")
    if(included STREQUAL entry OR room MATCHES "^${pattern}$")
      set(${result} TRUE PARENT_SCOPE)
      return()
    endif()
  endforeach()
  set(${result} FALSE PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE files RELATIVE ${SOURCES} ${SOURCES}/*.h ${SOURCES}/*.cpp)
set(faults "")
foreach(file IN LISTS files)
  room_of(${file} room)
  allowed_for(${room} allowed)
  if(allowed STREQUAL "NO_RULE")
    string(APPEND faults "${file}: its folder has no line in tests/layers.cmake\n")
    continue()
  endif()
  if(room MATCHES "^components/([a-z0-9_]+)/$")
    set(component ${CMAKE_MATCH_1})
    if(NOT EXISTS ${SOURCES}/${room}${component}.h)
      string(APPEND faults "${room} has no public header ${component}.h\n")
    endif()
    file(STRINGS ${SOURCES}/${file} spaces REGEX "^namespace zrl")
    list(REMOVE_ITEM spaces "namespace zrl::${component} {")
    if(spaces)
      string(APPEND faults "${file} is not all in namespace zrl::${component}: ${spaces}\n")
    endif()
  endif()
  string(REGEX REPLACE "\\.(h|cpp)$" "" stem ${file})
  file(STRINGS ${SOURCES}/${file} lines REGEX "^#include \"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" included "${line}")
    if(included STREQUAL "${stem}.h" OR NOT EXISTS ${SOURCES}/${included})
      continue()  # its own header, or one that the build generates
    endif()
    is_allowed(${included} "${allowed}" fine)
    if(NOT fine)
      string(APPEND faults "${file} must not include ${included}\n")
    endif()
  endforeach()
endforeach()

if(faults)
  message(FATAL_ERROR "${faults}The layers are described in src/README.md, the rules are in tests/layers.cmake.")
endif()
list(LENGTH files count)
message(STATUS "${count} files keep to their layers.")
