#include "main/stage/scenario_json.h"

#include <algorithm>
#include <set>

#include "main/stage/scenario.h"

namespace plemora {

namespace {

constexpr std::size_t largestFile = 1 << 20;
constexpr std::size_t longestQuote = 60;

std::string inQuotes(std::string_view text) {
  std::size_t length = std::min(text.size(), longestQuote);
  // Not through the middle of a character.
  while (length > 0 && length < text.size() && (text[length] & 0xc0) == 0x80) {
    --length;
  }
  std::string result = "\"";
  for (const char c : text.substr(0, length)) {
    const auto byte = static_cast<unsigned char>(c);
    result += byte < 0x20 || byte == 0x7f ? '?' : c;
  }
  return result + (length < text.size() ? "…\"" : "\"");
}

const char* kindOf(const nlohmann::ordered_json& json) {
  switch (json.type()) {
    case nlohmann::json::value_t::null:
      return "null";
    case nlohmann::json::value_t::boolean:
      return "true or false";
    case nlohmann::json::value_t::string:
      return "a text";
    case nlohmann::json::value_t::array:
      return "a list";
    case nlohmann::json::value_t::object:
      return "an object";
    default:
      return "a number";
  }
}

std::string lineAndColumn(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, std::min(byte == 0 ? 0 : byte - 1, text.size()));
  const auto lines = std::ranges::count(before, '\n');
  const auto start = before.rfind('\n');
  const auto column = start == std::string_view::npos ? before.size() + 1 : before.size() - start;
  return "line " + std::to_string(lines + 1) + ", column " + std::to_string(column);
}

std::string withoutZeros(double value) {
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

}  // namespace

std::string listOfNames(const std::vector<std::string_view>& names) {
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    list += i == 0 ? "" : i + 1 == names.size() ? " or " : ", ";
    list += inQuotes(names[i]);
  }
  return list;
}

void ScenarioPart::fail(const std::string& problem) const {
  throw ScenarioError(where_ + ": " + problem);
}

void ScenarioPart::failWith(std::string_view wanted) const {
  fail("must be " + std::string(wanted) + ", not " + kindOf(*json_));
}

void ScenarioPart::refuse(std::string_view given,
                          const std::vector<std::string_view>& allowed) const {
  fail(inQuotes(given) + " is not known here; it may be " + listOfNames(allowed));
}

void ScenarioPart::requireObject() const {
  if (!json_->is_object()) {
    failWith("an object");
  }
}

void ScenarioPart::allow(std::initializer_list<std::string_view> names) const {
  requireObject();
  for (const auto& [name, value] : json_->items()) {
    if (std::ranges::find(names, name) == names.end()) {
      refuse(name, names);
    }
  }
}

std::optional<ScenarioPart> ScenarioPart::find(std::string_view name) const {
  requireObject();
  const auto found = json_->find(std::string(name));
  if (found == json_->end()) {
    return std::nullopt;
  }
  return ScenarioPart(*found, where_ + ", " + inQuotes(name));
}

ScenarioPart ScenarioPart::at(std::string_view name) const {
  auto part = find(name);
  if (!part) {
    fail(inQuotes(name) + " is missing");
  }
  return *part;
}

std::string ScenarioPart::anyText() const {
  if (!json_->is_string()) {
    failWith("a text");
  }
  return json_->get<std::string>();
}

std::string ScenarioPart::text() const {
  std::string value = anyText();
  if (value.empty()) {
    fail("must not be empty");
  }
  return value;
}

bool ScenarioPart::flag() const {
  if (!json_->is_boolean()) {
    failWith("true or false");
  }
  return json_->get<bool>();
}

double ScenarioPart::number(double least, double most) const {
  if (!json_->is_number()) {
    failWith("a number");
  }
  const auto value = json_->get<double>();
  if (!(value >= least && value <= most)) {
    fail("must be from " + withoutZeros(least) + " to " + withoutZeros(most));
  }
  return value;
}

int ScenarioPart::whole(int least, int most) const {
  const double value = number(least, most);
  if (value != static_cast<double>(static_cast<int>(value))) {
    fail("must be a whole number");
  }
  return static_cast<int>(value);
}

std::vector<ScenarioPart> ScenarioPart::items() const {
  if (!json_->is_array()) {
    failWith("a list");
  }
  std::vector<ScenarioPart> parts;
  for (std::size_t i = 0; i < json_->size(); ++i) {
    parts.emplace_back((*json_)[i], where_ + ", item " + std::to_string(i + 1));
  }
  return parts;
}

std::vector<std::string> ScenarioPart::texts() const {
  std::vector<std::string> values;
  for (const ScenarioPart& part : items()) {
    values.push_back(part.text());
  }
  return values;
}

nlohmann::ordered_json parseScenarioJson(std::string_view text, const std::string& file) {
  using Json = nlohmann::ordered_json;
  if (text.size() > largestFile) {
    throw ScenarioError(file + ": is larger than a megabyte, which no scenario is");
  }
  // The library keeps the last of two members of one name; whoever wrote both meant something.
  std::vector<std::set<std::string>> names;
  const auto watch = [&](int /*depth*/, Json::parse_event_t event, Json& parsed) {
    switch (event) {
      case Json::parse_event_t::object_start:
        names.emplace_back();
        break;
      case Json::parse_event_t::object_end:
        names.pop_back();
        break;
      case Json::parse_event_t::key:
        if (!names.back().insert(parsed.get<std::string>()).second) {
          throw ScenarioError(file + ": " + inQuotes(parsed.get<std::string>()) +
                              " is given twice in one object");
        }
        break;
      default:
        break;
    }
    return true;
  };
  try {
    return Json::parse(text, watch);
  } catch (const Json::parse_error& error) {
    // The library's own words end with what it found.
    const std::string_view reason = error.what();
    const auto start = reason.rfind(": ");
    throw ScenarioError(
        file + ": is no JSON at " + lineAndColumn(text, error.byte) +
        (start == std::string_view::npos ? "" : ": " + std::string(reason.substr(start + 2))));
  } catch (const Json::exception& error) {
    throw ScenarioError(file + ": is no JSON: " + error.what());
  }
}

}  // namespace plemora
