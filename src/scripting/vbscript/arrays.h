#pragma once

#include <cstdint>
#include <span>

#include "scripting/vbscript/value.h"

// Arrays of the language: bounds from 0, up to 60 dimensions.
namespace zrl::vbs {

inline constexpr std::size_t most_dimensions = 60;

// An array without bounds, as `Dim a()` makes it.
Ref<Array> make_unbounded_array(Heap& heap);
// With the given upper bounds (-1: no element), all elements Empty. Raises 7 and 9.
Ref<Array> make_array(Heap& heap, std::span<const std::int64_t> upper_bounds);
Ref<Array> make_list(Heap& heap, std::size_t count);

Ref<Array> copy_of(const Array& array);
// What a variable or an element may hold of an array: the same, shared. Of a fixed array it is a copy without
// fixed bounds. An array to whose elements something refers is copied too, and so are such arrays in it: what
// is written by the reference must not reach the copy, nor make arrays that hold each other.
Value storable(Value array);
// The array of a variable, its own after this call: shared elements are copied.
Array& writable(Value& variable);

// ReDim. Keeps the elements with `preserve`, where all bounds but the last must stay (error 9).
// Fixed and locked arrays raise 10.
void redimension(Heap& heap, Value& variable, std::span<const std::int64_t> upper_bounds, bool preserve);
// Erase: a fixed array's elements become Empty, another one loses its bounds.
void erase(Heap& heap, Value& variable);

// The element at the indexes; raises 9.
Value& element_at(Array& array, std::span<const std::int64_t> indexes);

// Upper bound of dimension 1, 2, ...; raises 9.
std::int64_t upper_bound(const Array& array, std::int64_t dimension);

}  // namespace zrl::vbs
