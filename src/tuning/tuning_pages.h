#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "console/document.h"
#include "tuning/tuning_desk.h"

namespace qv5123 {

/// The names of the tuning pages.
inline constexpr const char* kTuningPages[] = {"front", "awb", "dynamic", "gamma", "matrix", "lsc"};

/// "front, awb, ...".
std::string page_names();
/// Whether it is one of kTuningPages.
bool is_page(std::string_view name);

/// The values of the page of that name, which is one of kTuningPages, as the page starts. Any other
/// name is a std::logic_error.
std::unique_ptr<TuningModel> make_model(std::string_view name);
/// The same page with its work. Host and document must outlive it.
std::unique_ptr<TuningDesk> make_desk(std::string_view name, DeskHost& host, CQV5123Doc& document);

}  // namespace qv5123
