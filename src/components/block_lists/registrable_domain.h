#pragma once

#include <string_view>

namespace zrl {

// The part of a host name that somebody registered: "www.shop.example" becomes "shop.example", and
// "www.shop.co.uk" "shop.co.uk". Empty if the name has no such part: a single label, or the domain of
// a registry. The name is one as domain_name() makes them.
//
// Known are the second-level registries of the table in the source file, which are those that most
// hosts lie under. Below a registry that is not in it, the domain comes out one label too short, and a
// list that knows the whole name is not asked for it.
std::string_view registrable_domain(std::string_view host);

}  // namespace zrl
