#pragma once

#define PCRE2_CODE_UNIT_WIDTH 0
#include <pcre2.h>

// PCRE2 has one library for each width of units, with the same functions under different names.
namespace zrl::pcre2 {

template <typename Unit>
struct Pcre2;

template <>
struct Pcre2<char> {
  using Code = pcre2_code_8;
  using MatchData = pcre2_match_data_8;
  using MatchContext = pcre2_match_context_8;
  using CompileContext = pcre2_compile_context_8;
  using JitStack = pcre2_jit_stack_8;
  using CalloutBlock = pcre2_callout_block_8;
  using Text = PCRE2_SPTR8;

  static constexpr auto compile = pcre2_compile_8;
  static constexpr auto code_free = pcre2_code_free_8;
  static constexpr auto jit_compile = pcre2_jit_compile_8;
  static constexpr auto pattern_info = pcre2_pattern_info_8;
  static constexpr auto match = pcre2_match_8;
  static constexpr auto match_data_create = pcre2_match_data_create_from_pattern_8;
  static constexpr auto match_data_free = pcre2_match_data_free_8;
  static constexpr auto ovector = pcre2_get_ovector_pointer_8;
  static constexpr auto match_context_create = pcre2_match_context_create_8;
  static constexpr auto match_context_free = pcre2_match_context_free_8;
  static constexpr auto set_match_limit = pcre2_set_match_limit_8;
  static constexpr auto set_heap_limit = pcre2_set_heap_limit_8;
  static constexpr auto set_offset_limit = pcre2_set_offset_limit_8;
  static constexpr auto set_callout = pcre2_set_callout_8;
  static constexpr auto compile_context_create = pcre2_compile_context_create_8;
  static constexpr auto compile_context_free = pcre2_compile_context_free_8;
  static constexpr auto set_newline = pcre2_set_newline_8;
  static constexpr auto jit_stack_create = pcre2_jit_stack_create_8;
  static constexpr auto jit_stack_free = pcre2_jit_stack_free_8;
  static constexpr auto jit_stack_assign = pcre2_jit_stack_assign_8;
};

template <>
struct Pcre2<char16_t> {
  using Code = pcre2_code_16;
  using MatchData = pcre2_match_data_16;
  using MatchContext = pcre2_match_context_16;
  using CompileContext = pcre2_compile_context_16;
  using JitStack = pcre2_jit_stack_16;
  using CalloutBlock = pcre2_callout_block_16;
  using Text = PCRE2_SPTR16;

  static constexpr auto compile = pcre2_compile_16;
  static constexpr auto code_free = pcre2_code_free_16;
  static constexpr auto jit_compile = pcre2_jit_compile_16;
  static constexpr auto pattern_info = pcre2_pattern_info_16;
  static constexpr auto match = pcre2_match_16;
  static constexpr auto match_data_create = pcre2_match_data_create_from_pattern_16;
  static constexpr auto match_data_free = pcre2_match_data_free_16;
  static constexpr auto ovector = pcre2_get_ovector_pointer_16;
  static constexpr auto match_context_create = pcre2_match_context_create_16;
  static constexpr auto match_context_free = pcre2_match_context_free_16;
  static constexpr auto set_match_limit = pcre2_set_match_limit_16;
  static constexpr auto set_heap_limit = pcre2_set_heap_limit_16;
  static constexpr auto set_offset_limit = pcre2_set_offset_limit_16;
  static constexpr auto set_callout = pcre2_set_callout_16;
  static constexpr auto compile_context_create = pcre2_compile_context_create_16;
  static constexpr auto compile_context_free = pcre2_compile_context_free_16;
  static constexpr auto set_newline = pcre2_set_newline_16;
  static constexpr auto jit_stack_create = pcre2_jit_stack_create_16;
  static constexpr auto jit_stack_free = pcre2_jit_stack_free_16;
  static constexpr auto jit_stack_assign = pcre2_jit_stack_assign_16;
};

}  // namespace zrl::pcre2
