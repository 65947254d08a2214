# cmake -DFOLDER=... -DOUTPUT=... -DGZIP=... -P embed_assets.cmake
# Writes OUTPUT/assets.S and OUTPUT/assets.cpp, which build every file of the folder in.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE files RELATIVE ${FOLDER} ${FOLDER}/*)
list(SORT files COMPARE STRING)

# "|" stands for ";", which parts lists.
set(types
  html "text/html| charset=utf-8" js "text/javascript| charset=utf-8" css "text/css| charset=utf-8"
  json application/json svg image/svg+xml png image/png ico image/x-icon woff2 font/woff2
  webmanifest application/manifest+json txt "text/plain| charset=utf-8" map application/json)
set(compressible html js css json svg webmanifest txt map)

file(REMOVE_RECURSE ${OUTPUT}/gzip)
file(MAKE_DIRECTORY ${OUTPUT}/gzip)
set(assembly "  .section .rodata\n")
set(declarations "")
set(entries "")
set(number 0)

macro(embed symbol file)
  string(APPEND assembly "  .balign 16\n  .globl ${symbol}\n  .globl ${symbol}_end\n"
                         "${symbol}:\n  .incbin \"${file}\"\n${symbol}_end:\n  .byte 0\n")
  string(APPEND declarations "extern \"C\" const char ${symbol}[];\nextern \"C\" const char ${symbol}_end[];\n")
endmacro()

foreach(file IN LISTS files)
  string(REGEX REPLACE "^.*\\." "" extension "${file}")
  list(FIND types "${extension}" found)
  set(type application/octet-stream)
  if(found GREATER_EQUAL 0)
    math(EXPR found "${found} + 1")
    list(GET types ${found} type)
    string(REPLACE "|" ";" type "${type}")
  endif()

  set(symbol zrl_asset_${number})
  embed(${symbol} "${FOLDER}/${file}")
  set(gzipped "{}")
  if(GZIP AND extension IN_LIST compressible)
    execute_process(COMMAND ${GZIP} -9 -n -c "${FOLDER}/${file}" OUTPUT_FILE ${OUTPUT}/gzip/${number}
                    COMMAND_ERROR_IS_FATAL ANY)
    file(SIZE "${FOLDER}/${file}" plain_size)
    file(SIZE "${OUTPUT}/gzip/${number}" gzip_size)
    if(gzip_size LESS plain_size)
      embed(${symbol}_gz "${OUTPUT}/gzip/${number}")
      set(gzipped "between(${symbol}_gz, ${symbol}_gz_end)")
    endif()
  endif()

  # The names that the front end's build makes: assets/NAME-DIGEST.EXTENSION.
  set(immutable false)
  if(file MATCHES "^assets/.*-[A-Za-z0-9_-][A-Za-z0-9_-][A-Za-z0-9_-][A-Za-z0-9_-][A-Za-z0-9_-][A-Za-z0-9_-][A-Za-z0-9_-][A-Za-z0-9_-]\\.[a-z0-9]+$")
    set(immutable true)
  endif()
  string(APPEND entries
    "      Asset{\"/${file}\", \"${type}\", between(${symbol}, ${symbol}_end), ${gzipped}, ${immutable}},\n")
  math(EXPR number "${number} + 1")
endforeach()
string(APPEND assembly "  .section .note.GNU-stack,\"\",%progbits\n")

file(WRITE ${OUTPUT}/assets.S "${assembly}")
file(WRITE ${OUTPUT}/assets.cpp "#include \"host/web/assets.h\"

#include <array>

${declarations}
namespace zrl::web {

namespace {

std::string_view between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

std::span<const Asset> built_in_assets() {
  static const std::array<Asset, ${number}> assets = {
${entries}  };
  return assets;
}

}  // namespace zrl::web
")
