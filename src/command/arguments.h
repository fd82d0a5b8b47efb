// What the program may be called with: verbs, and the arguments, options and flags of each. Nobody else knows
// the parser behind it, whose templates are slow to compile. A verb's variables are filled before its work
// begins, and have to live until then.
#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovfile/component.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace command {

/// An argument, option or flag of a verb.
class option {
 public:
  explicit option(CLI::Option& made) noexcept : made_(&made) {}

  /// What the help calls its value.
  const option& type_name(const std::string& name) const;
  const option& required() const;
  /// They do not go together.
  const option& excludes(const option& other) const;
  /// The help tells the value that its variable has now.
  const option& shows_default() const;
  /// The help leaves it out.
  const option& hidden() const;
  /// One of these words alone, which the help lists.
  const option& one_of(const std::vector<std::string>& words) const;
  /// One of these words alone; the description tells which.
  const option& one_of_described(const std::vector<std::string>& words) const;
  /// `problem` says what is wrong with a value; nothing: it is good.
  const option& check(std::function<std::string(const std::string& value)> problem) const;

  bool given() const;

 private:
  CLI::Option* made_;
};

/// Of whole numbers.
struct number_range {
  LONG least;
  LONG most = std::numeric_limits<LONG>::max();
};

class verb {
 public:
  explicit verb(CLI::App& made) noexcept : made_(&made) {}

  /// One below this one, which is asked for by its name.
  verb add_verb(const std::string& name, const std::string& what) const;
  /// What its help ends with.
  void footer(const std::string& text) const;
  /// Does what the verb is for; throws what failure.h lists.
  void callback(std::function<void()> work) const;

  /// They are known by their place.
  option add_argument(const std::string& name, std::string& value, const std::string& what) const;
  /// All that are left.
  option add_arguments(const std::string& name, std::vector<std::string>& values,
                       const std::string& what) const;

  /// Options are known by their names (`-n,--rows`) and have a value; a second one is a mistake.
  option add_option(const std::string& names, std::string& value, const std::string& what = {}) const;
  option add_option(const std::string& names, std::optional<std::string>& value,
                    const std::string& what) const;
  /// Decimal digits, also with zeros in front.
  option add_number(const std::string& names, LONG& number, number_range range,
                    const std::string& what) const;
  option add_number(const std::string& names, std::optional<LONG>& number, number_range range,
                    const std::string& what) const;
  /// May be given several times, with one value each.
  option add_repeated(const std::string& names, std::vector<std::string>& values,
                      const std::string& what) const;
  /// The same, and commas take each value apart.
  option add_list(const std::string& names, std::vector<std::string>& values, const std::string& what) const;

  option add_flag(const std::string& names, bool& value, const std::string& what) const;

  /// Once all is read: whether a verb below this one was asked for.
  bool has_verb() const;
  /// `program` is the name that it is called by.
  std::string help(const std::string& program) const;

 private:
  CLI::App* made_;
};

/// The program itself, the verb above all others.
class argument_parser {
 public:
  argument_parser(const std::string& what, const std::string& name);
  ~argument_parser();
  argument_parser(const argument_parser&) = delete;
  argument_parser& operator=(const argument_parser&) = delete;

  verb program() const { return verb(*program_); }
  /// What --version prints.
  void set_version(const std::string& version) const;

  /// Takes the arguments (UTF-8, the program's name first) and does the work of the verb that they ask for.
  /// Returns the text that they ask for instead, help or version. Throws `wrong_usage`, and what the work
  /// throws.
  std::string run(const std::vector<std::string>& arguments) const;

 private:
  std::unique_ptr<CLI::App> program_;
};

}  // namespace command
