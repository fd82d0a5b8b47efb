#include "arguments.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <charconv>
#include <sstream>
#include <system_error>
#include <utility>

#include "failure.h"
#include "field_names.h"
#include "words.h"

namespace command {
namespace {

/// The number goes on without zeros in front, which would make it octal.
CLI::Validator whole_number(number_range range) {
  const auto problem = [range](std::string& words) -> std::string {
    long long number = 0;
    const char* const end = words.data() + words.size();
    const auto [stop, error] = std::from_chars(words.data(), end, number);
    if (stop != end || error == std::errc::invalid_argument) return words + " is not a whole number";
    if (error != std::errc() || number < range.least || number > range.most) {
      return fmt::format("{} is not in the range {} to {}", words, range.least, range.most);
    }
    words = std::to_string(number);
    return {};
  };
  return {problem, {}};
}

std::string unknown(const std::string& word, const std::string& what, const std::vector<std::string>& known) {
  const std::vector<std::string> nearest = names_near(known, word);
  return fmt::format("{} is no {}{}", word, what,
                     nearest.empty() ? "" : fmt::format("; the nearest is {}", joined(nearest, " or ")));
}

std::vector<std::string> verbs_of(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* each : program.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(each->get_name());
  }
  return names;
}

const CLI::App* verb_named(const CLI::App& program, const std::string& name) {
  const auto found =
      program.get_subcommands([&name](const CLI::App* each) { return each->check_name(name); });
  return found.empty() ? nullptr : found.front();
}

std::vector<std::string> options_of(const CLI::App& verb) {
  std::vector<std::string> names;
  for (const CLI::Option* each : verb.get_options([](const CLI::Option*) { return true; })) {
    for (const std::string& name : each->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

/// The first word behind the program's name that is no verb, and no option of the verb before it, with what
/// is near it; empty where there is none.
std::string unknown_word(const CLI::App& program, const std::vector<std::string>& words) {
  const CLI::App* verb = &program;
  for (std::size_t i = 1; i < words.size() && words[i] != "--"; ++i) {
    const std::string name = words[i].substr(0, words[i].find('='));
    if (name.size() > 1 && name.front() == '-') {
      const CLI::Option* const found = verb->get_option_no_throw(name);
      const bool is_number = std::isdigit(static_cast<unsigned char>(name[1])) != 0 || name[1] == '.';
      if (found == nullptr && !is_number) {
        const std::string of = verb == &program ? "option" : "option of " + verb->get_name();
        return unknown(name, of, options_of(*verb));
      }
      const bool takes_next = found != nullptr && found->get_items_expected_max() > 0 && name == words[i];
      i += takes_next ? 1 : 0;
      continue;
    }
    const std::vector<std::string> verbs = verbs_of(*verb);
    if (verbs.empty()) continue;
    const CLI::App* const found = verb_named(*verb, name);
    if (found == nullptr) return unknown(name, "command", verbs);
    verb = found;
  }
  return {};
}

}  // namespace

const option& option::type_name(const std::string& name) const {
  made_->type_name(name);
  return *this;
}

const option& option::required() const {
  made_->required();
  return *this;
}

const option& option::excludes(const option& other) const {
  made_->excludes(other.made_);
  return *this;
}

const option& option::shows_default() const {
  made_->capture_default_str();
  return *this;
}

const option& option::hidden() const {
  made_->group("");
  return *this;
}

const option& option::one_of(const std::vector<std::string>& words) const {
  made_->check(CLI::IsMember(words));
  return *this;
}

const option& option::one_of_described(const std::vector<std::string>& words) const {
  made_->check(CLI::IsMember(words).description(""));
  return *this;
}

const option& option::check(std::function<std::string(const std::string&)> problem) const {
  made_->check(CLI::Validator(std::move(problem), {}));
  return *this;
}

bool option::given() const { return made_->count() > 0; }

verb verb::add_verb(const std::string& name, const std::string& what) const {
  return verb(*made_->add_subcommand(name, what));
}

void verb::footer(const std::string& text) const { made_->footer(text); }

void verb::callback(std::function<void()> work) const { made_->callback(std::move(work)); }

option verb::add_argument(const std::string& name, std::string& value, const std::string& what) const {
  return option(*made_->add_option(name, value, what));
}

option verb::add_arguments(const std::string& name, std::vector<std::string>& values,
                           const std::string& what) const {
  return option(*made_->add_option(name, values, what));
}

option verb::add_option(const std::string& names, std::string& value, const std::string& what) const {
  return option(*made_->add_option(names, value, what));
}

option verb::add_option(const std::string& names, std::optional<std::string>& value,
                        const std::string& what) const {
  return option(*made_->add_option(names, value, what));
}

option verb::add_number(const std::string& names, LONG& number, number_range range,
                        const std::string& what) const {
  return option(*made_->add_option(names, number, what)->transform(whole_number(range)));
}

option verb::add_number(const std::string& names, std::optional<LONG>& number, number_range range,
                        const std::string& what) const {
  return option(*made_->add_option(names, number, what)->transform(whole_number(range)));
}

option verb::add_repeated(const std::string& names, std::vector<std::string>& values,
                          const std::string& what) const {
  return option(*made_->add_option(names, values, what)
                     ->expected(1)
                     ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll));
}

option verb::add_list(const std::string& names, std::vector<std::string>& values,
                      const std::string& what) const {
  return option(*made_->add_option(names, values, what)
                     ->delimiter(',')
                     ->expected(1)
                     ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll));
}

option verb::add_flag(const std::string& names, bool& value, const std::string& what) const {
  return option(*made_->add_flag(names, value, what));
}

bool verb::has_verb() const { return !made_->get_subcommands().empty(); }

std::string verb::help(const std::string& program) const { return made_->help(program); }

argument_parser::argument_parser(const std::string& what, const std::string& name)
    : program_(std::make_unique<CLI::App>(what, name)) {
  program_->allow_windows_style_options(false);  // a statement may begin with a comment, a path with a slash
  program_->require_subcommand(1);
}

argument_parser::~argument_parser() = default;

void argument_parser::set_version(const std::string& version) const {
  program_->set_version_flag("--version", version);
}

std::string argument_parser::run(const std::vector<std::string>& arguments) const {
  try {
    // The parser takes them last one first, without the program's name.
    std::vector<std::string> rest(arguments.rbegin(), arguments.rend());
    if (!rest.empty()) rest.pop_back();
    program_->parse(std::move(rest));
    return {};
  } catch (const CLI::ParseError& stopped) {
    std::ostringstream text;
    std::ostringstream complaint;
    if (program_->exit(stopped, text, complaint) == 0) return text.str();
    const std::string unknown = unknown_word(*program_, arguments);
    throw wrong_usage((unknown.empty() ? stopped.what() : unknown) + " (see --help)");
  }
}

}  // namespace command
