/// @file
/// A page for a browser that tells what a store holds.
#pragma once

#include <string>
#include <vector>

#include "Entry.h"

namespace vemora::tool {

/// A preference, and where a host looks for it.
struct ReportedEntry {
  Entry entry;
  std::string default_level;
  std::string rule;
};

struct Report {
  std::string place;  // files, or a key
  std::vector<ReportedEntry> entries;
  std::vector<std::string> findings;
};

/// The whole page; it loads nothing from elsewhere.
std::string MakeReportPage(const Report& report);

}  // namespace vemora::tool
