#include "adapters/linux/desktop/interpreters.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/text.h"

namespace plemora {

namespace {

using Kind = InterpretedProgram::Kind;

/// How one family of interpreters reads its arguments. Lists are separated by blanks.
struct Family {
  std::string_view names;       ///< base names without version digits
  std::string_view inlineCode;  ///< options after which code follows: there is no file
  std::string_view withValue;   ///< options whose value is the next word
  std::string_view fileOption;  ///< the option whose value is the file
  std::string_view nameOption;  ///< the option whose value names what runs
  std::string_view prefix;      ///< before such names
};

constexpr std::array<Family, 10> families = {{
    {"python pypy", "-c -", "-W -X --check-hash-based-pycs", "", "-m", "python:"},
    {"perl", "-e -E", "-I", "", "", ""},
    {"ruby", "-e", "-I -r -C -E", "", "", ""},
    {"node nodejs bun deno", "-e -p --eval --print", "-r --require --import --loader -C", "", "",
     ""},
    {"bash sh dash zsh ksh mksh fish", "-c -lc -ic -s", "-o -O +o +O --rcfile --init-file", "", "",
     ""},
    {"lua luajit php guile tclsh wish Rscript julia love qml", "-e -r", "-l -d -I", "", "", ""},
    {"gjs gjs-console", "-c --command", "-I -C --include-path", "", "", ""},
    {"mono mono-sgen dotnet", "", "--config --fx-version --additionalprobingpath", "", "", ""},
    {"electron", "", "-r --require", "", "", ""},
    {"java", "", "-cp -classpath --class-path -p --module-path --add-modules --add-opens", "-jar",
     "-m --module", "java:"},
}};

bool contains(std::string_view list, std::string_view word) {
  while (!list.empty() && !word.empty()) {
    const std::string_view item = list.substr(0, list.find(' '));
    if (item == word) {
      return true;
    }
    list.remove_prefix(std::min(item.size() + 1, list.size()));
  }
  return false;
}

/// "python3.11" and "electron25" without their versions.
std::string_view unversioned(std::string_view name) {
  const std::size_t end = name.find_last_not_of("0123456789.-");
  return name.substr(0, end == std::string_view::npos ? name.size() : end + 1);
}

std::string afterLast(const std::string& text, std::string_view separators) {
  const std::size_t at = text.find_last_of(separators);
  return at == std::string::npos ? text : text.substr(at + 1);
}

/// Wine shows the Windows path of what it runs as an argument.
InterpretedProgram ofWine(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    const std::string lower = lowercased(argument);
    if (!lower.ends_with(".exe")) {
      continue;
    }
    const std::string name = afterLast(argument, "\\/");
    return {Kind::named, "wine:" + lower, name.substr(0, name.size() - 4)};
  }
  return {};
}

InterpretedProgram ofFamily(const Family& family, const std::vector<std::string>& arguments) {
  const bool isJava = family.prefix == "java:";
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool hasNext = i + 1 < arguments.size();
    if (contains(family.inlineCode, argument)) {
      return {};
    }
    if (contains(family.nameOption, argument)) {
      return hasNext
                 ? InterpretedProgram{Kind::named, std::string(family.prefix) + arguments[i + 1],
                                      arguments[i + 1]}
                 : InterpretedProgram{};
    }
    if (contains(family.fileOption, argument)) {
      return hasNext ? InterpretedProgram{Kind::file, arguments[i + 1], {}} : InterpretedProgram{};
    }
    if (argument.starts_with("--type=")) {
      return {};  // a helper process of an Electron app
    }
    if (contains(family.withValue, argument)) {
      ++i;
    } else if (argument == "run" || argument == "exec") {
      continue;  // verbs, as in "deno run"
    } else if (isJava && !argument.starts_with('-')) {
      return {Kind::named, std::string(family.prefix) + argument, afterLast(argument, "./")};
    } else if (!argument.empty() && argument[0] != '-') {
      return {Kind::file, argument, {}};
    }
  }
  return {};
}

}  // namespace

std::optional<InterpretedProgram> interpretedProgram(const std::string& executableName,
                                                     const std::vector<std::string>& arguments) {
  if (executableName.starts_with("wine")) {
    return ofWine(arguments);
  }
  const std::string_view name = unversioned(executableName);
  for (const Family& family : families) {
    if (contains(family.names, name)) {
      return ofFamily(family, arguments);
    }
  }
  return std::nullopt;
}

}  // namespace plemora
