#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tuning/front.h"

namespace qv5123 {

/// One value of a page, by name.
template <class Values>
struct Member {
  std::string name;
  std::function<int(const Values&)> get;
  std::function<void(Values&, int)> set;
};
template <class Values>
using Members = std::vector<Member<Values>>;

/// The member that `access` finds in the values.
template <class Values, class Access>
void add_member(Members<Values>& members, std::string name, Access access) {
  const auto get = [access](const Values& values) { return static_cast<int>(access(values)); };
  const auto set = [access](Values& values, int number) {
    auto& member = access(values);
    member = static_cast<std::decay_t<decltype(member)>>(number);
  };
  members.push_back({std::move(name), get, set});
}

// The numbers of the tuning pages as the pages show them, in the order in which
// they are printed.
Members<FrontValues> front_members();

}  // namespace qv5123
