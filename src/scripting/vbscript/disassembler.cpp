#include <cstdio>

#include "scripting/vbscript/compiler.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

struct OpInfo {
  const char* name;
  const char* operands;
  int words;
};

constexpr OpInfo infos[] = {
#define OPCODE(name, operands, words) {#name, operands, words},
#include "scripting/vbscript/opcodes.def"
#undef OPCODE
};

void put(std::string& text, char kind, const Instr& instr, std::uint16_t field, const Instr* extra,
         const Symbols& symbols) {
  const std::int32_t second = extra ? extra->wide() : 0;
  switch (kind) {
    case '-':
      return;
    case 'K':
      text += " k" + std::to_string(instr.wide());
      return;
    case 'J':
      text += " ->" + std::to_string(extra ? extra->wide() : instr.wide());
      return;
    case 'S':
      text += ' ' + to_utf8(symbols.name(static_cast<SymbolId>(second)));
      return;
    case 'N':
      text += " #" + std::to_string(second);
      return;
    default:
      text += ' ';
      if (kind != 'n') text += kind;
      text += std::to_string(field);
  }
}

}  // namespace

std::string disassemble(const Proc& proc, const Symbols& symbols) {
  std::string text;
  for (std::size_t pc = 0; pc < proc.code.size();) {
    const Instr& instr = proc.code[pc];
    const OpInfo& info = infos[static_cast<int>(instr.op)];
    const Instr* extra = info.words == 2 ? &proc.code[pc + 1] : nullptr;
    char head[48];
    std::snprintf(head, sizeof head, "%5zu  %-22s", pc, info.name);
    text += head;
    const std::uint16_t fields[] = {instr.a, instr.b, instr.c, 0};
    for (int i = 0; info.operands[i] != 0; ++i) put(text, info.operands[i], instr, fields[i], extra, symbols);
    text += '\n';
    pc += static_cast<std::size_t>(info.words);
  }
  return text;
}

}  // namespace zrl::vbs
