#pragma once

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace plemora {

/// One value of a scenario file, which knows where it stands: whatever is wrong with it ends in a
/// ScenarioError that says so. A view; the document outlives it.
class ScenarioPart {
 public:
  using Json = nlohmann::ordered_json;

  /// where: such as `tour.json: step 3 (click)`.
  ScenarioPart(const Json& json, std::string where) : json_(&json), where_(std::move(where)) {}

  const Json& json() const { return *json_; }
  const std::string& where() const { return where_; }
  [[noreturn]] void fail(const std::string& problem) const;

  /// Refuses anything but an object with these members at most.
  void allow(std::initializer_list<std::string_view> names) const;
  /// Refuses anything but an object.
  void requireObject() const;

  std::optional<ScenarioPart> find(std::string_view name) const;
  ScenarioPart at(std::string_view name) const;

  bool isText() const { return json_->is_string(); }
  /// Refuses an empty one.
  std::string text() const;
  /// Also an empty one.
  std::string anyText() const;
  bool flag() const;
  double number(double least, double most) const;
  int whole(int least, int most) const;
  std::vector<ScenarioPart> items() const;
  std::vector<std::string> texts() const;

  template <typename Value>
  using Names = std::initializer_list<std::pair<std::string_view, Value>>;
  /// A text that is one of these names.
  template <typename Value>
  Value oneOf(Names<Value> names) const {
    const std::string given = text();
    std::vector<std::string_view> allowed;
    for (const auto& [name, value] : names) {
      if (name == given) {
        return value;
      }
      allowed.push_back(name);
    }
    refuse(given, allowed);
  }

  /// The value of a member, when there is one, as read by one of the functions above.
  template <typename Value, typename Read>
  void read(std::string_view name, Value& value, Read reader) const {
    if (const auto part = find(name)) {
      value = reader(*part);
    }
  }

  [[noreturn]] void refuse(std::string_view given,
                           const std::vector<std::string_view>& allowed) const;

 private:
  [[noreturn]] void failWith(std::string_view wanted) const;

  const Json* json_;
  std::string where_;
};

/// The whole text as JSON. Refuses what is no JSON, a member given twice, and files that are too
/// large to be scenarios; throws ScenarioError.
nlohmann::ordered_json parseScenarioJson(std::string_view text, const std::string& file);

/// `"a", "b" or "c"`.
std::string listOfNames(const std::vector<std::string_view>& names);

}  // namespace plemora
