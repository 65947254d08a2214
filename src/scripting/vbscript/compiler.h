#pragma once

#include <memory>
#include <string>
#include <vector>

#include "scripting/vbscript/ast.h"
#include "scripting/vbscript/builtins.h"
#include "scripting/vbscript/code.h"

namespace zrl::vbs {

// What a text is compiled for.
struct CompileContext {
  Heap& heap;
  Symbols& symbols;
  Globals& globals;
  const Builtins& builtins;
  // For Execute and Eval inside a procedure: the procedure whose variables the text sees, and its class.
  const Proc* outer = nullptr;
  const std::vector<Binding>* outer_extra = nullptr;  // variables that earlier Executes made there
  const ClassInfo* outer_class = nullptr;
  bool evaluate = false;  // one expression, whose value is the result
};

// Compiles a parsed text and enters its procedures, classes, constants and variables into the globals.
// The module takes the text. Raises CompileFailure and Failure (memory); the globals are then as they
// were, and the text is where it was.
std::unique_ptr<Module> compile(Ast& ast, std::u16string& text, std::string name,
                                const CompileContext& context);

std::string disassemble(const Proc& proc, const Symbols& symbols);

}  // namespace zrl::vbs
