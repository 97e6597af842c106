#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tuning/tuning_pages.h"

namespace qv5123 {

/// A page with those of its values that are meant, by their places in its list of fields.
struct PageParameters {
  std::unique_ptr<TuningModel> page;
  std::vector<std::size_t> fields;

  const FieldInfo& field(std::size_t i) const { return page->fields()[i]; }
  /// "awb.a_slope".
  std::string name(std::size_t i) const;
};

/// All values, page by page.
std::vector<PageParameters> all_parameters();
/// Whether a value has exactly this name. It then stands for that alone, also where it is the beginning of
/// others, as "dynamic.ir_led" is.
bool is_value_name(const std::string& name);
/// The values that the patterns stand for, page by page; without a pattern all. A Complaint where a pattern
/// stands for none.
std::vector<PageParameters> find_parameters(const std::vector<std::string>& patterns);

/// "NAME=VALUE" as it was typed.
struct Assignment {
  std::string pattern;
  bool is_name = false;  ///< a value's own, not to be taken for the beginning of others
  int number = 0;
};
/// A Complaint for what is none.
Assignment read_assignment(const std::string& text);

/// Puts the number into every value that the assignment stands for; a Complaint where one does not take it.
void assign(const Assignment& assignment, const PageParameters& parameters, TuningModel& to);

}  // namespace qv5123
