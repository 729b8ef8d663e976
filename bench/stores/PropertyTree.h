/// @file
#pragma once

// Its own headers use what it calls deprecated, and says so.
#define BOOST_BIND_GLOBAL_PLACEHOLDERS
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <string>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

/// Boost.PropertyTree, in a JSON file; it keeps every value as text.
class PropertyTree : public Store {
 public:
  static constexpr const char* kName = "PropertyTree";

  using Name = Utf8Name;
  static Name MakeName(const Preference& preference) { return MakeUtf8Name(preference); }

  explicit PropertyTree(Size size) : size_(size), file_(GetFile(size, "property-tree.json")) {}

  void WriteFiles() {
    WriteEach(size_,
              [this](const std::string& category, const std::string& key, const auto& value) {
                if (Find(tree_, category) == nullptr) {
                  tree_.push_back({category, Tree()});
                }
                Tree entry;
                entry.put_value(value);
                Find(tree_, category)->push_back({key, entry});
              });
    Save();
  }
  void Load() { boost::property_tree::read_json(file_, tree_); }
  void Unload() { tree_.clear(); }
  void Save() { boost::property_tree::write_json(file_, tree_); }

  int ReadInt(const Name& name) {
    const Tree* const value = Find(name);
    return value != nullptr ? value->get_value(0) : 0;
  }
  std::string ReadText(const Name& name) {
    const Tree* const value = Find(name);
    return value != nullptr ? value->data() : std::string();
  }
  bool WriteInt(const Name& name, int number) {
    Tree* const value = Find(name);
    if (value != nullptr) {
      value->put_value(number);
    }
    return value != nullptr;
  }

 private:
  using Tree = boost::property_tree::ptree;

  static Tree* Find(Tree& tree, const std::string& name) {
    const auto found = tree.find(name);
    return found != tree.not_found() ? &found->second : nullptr;
  }
  Tree* Find(const Name& name) {
    Tree* const category = Find(tree_, name.category);
    return category != nullptr ? Find(*category, name.key) : nullptr;
  }

  const Size size_;
  const std::string file_;
  Tree tree_;
};

}  // namespace vemora::bench
