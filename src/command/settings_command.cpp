// ovfile settings: what a user can choose for all programs that use the library.
#include <memory>

#include "commands.h"
#include "failure.h"
#include "ovfile/smart.h"
#include "session_mark.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* settings_help =
    "Shows or chooses whether double-precision tables may have field names of up to 24 characters instead\n"
    "of 8. A choice counts from the next login on, with --now for programs that start from now on.";

struct settings_request {
  std::string name;
  std::string value;
  bool now = false;
};

const char* on_or_off(bool value) { return value ? "on" : "off"; }

/// The library's own view of the settings. It asks for nothing before it is asked: the limit is fixed for
/// this process, and the session marked, by the first question.
class long_names {
 public:
  long_names() : schema_(ovfile::create_schema()) { ovfile::check(schema_->put_DoublePrecisionFlag(1)); }

  bool chosen() const { return ask(&IOvSchema::get_UseLongFieldNamesMaster); }
  bool in_session() const { return ask(&IOvSchema::get_UseLongFieldNames); }

  void choose(bool value) const {
    if (FAILED(schema_->put_UseLongFieldNamesMaster(value ? VARIANT_TRUE : VARIANT_FALSE))) {
      throw failure("the user's settings cannot be written");
    }
  }

  LONG limit() const {
    LONG longest = 0;
    ovfile::check(schema_->get_FieldNameMaxLength(&longest));
    return longest;
  }

 private:
  using getter = HRESULT (STDMETHODCALLTYPE IOvSchema::*)(VARIANT_BOOL*);

  bool ask(getter property) const {
    VARIANT_BOOL value = VARIANT_FALSE;
    ovfile::check((schema_.get()->*property)(&value));
    return value != VARIANT_FALSE;
  }

  ovfile::pointer<IOvSchema> schema_;
};

/// Nothing is asked that would make the session's choice.
void show() {
  const long_names settings;
  text_output output;
  output.text() = fmt::format("long-field-names  {}\n", on_or_off(settings.chosen()));
  if (session_is_marked()) {
    output.text() += fmt::format(
        "this session      {}\nlongest name      {} characters in double precision, 8 in single\n",
        on_or_off(settings.in_session()), settings.limit());
  } else {
    output.text() += "this session      decided when first needed\n";
  }
  output.finish();
}

void choose(bool value) {
  const long_names settings;
  settings.choose(value);
  say(settings.in_session() == value
          ? fmt::format("long field names are {}, in this session too", on_or_off(value))
          : fmt::format("long field names are {} from the next login on; --now sets this session too",
                        on_or_off(value)));
}

void choose_now(bool value) {
  const long_names settings;
  forget_session_mark();
  try {
    settings.choose(value);
  } catch (const failure&) {
    settings.limit();  // marks the session again, with the choice that it had: that cannot be written either
    throw;
  }
  const bool in_session = settings.in_session();
  const LONG limit = settings.limit();  // marks the session again
  if (in_session != value || (limit > 8) != value) throw failure("this session's setting cannot be written");
  say(fmt::format("long field names are {} for programs that start from now on", on_or_off(value)));
}

void run_settings(const settings_request& request) {
  if (request.value.empty()) {
    if (request.now) throw wrong_usage("--now goes with on or off");
    show();
    return;
  }
  const bool value = request.value == "on";
  request.now ? choose_now(value) : choose(value);
}

}  // namespace

void define_settings(const verb& program) {
  auto request = std::make_shared<settings_request>();
  const verb this_verb = program.add_verb("settings", "Show or change the user's settings");
  this_verb.footer(settings_help);
  this_verb.add_argument("name", request->name, "the setting (all are shown without one)")
      .one_of({"long-field-names"});
  this_verb.add_argument("value", request->value, "on or off").one_of({"on", "off"});
  this_verb.add_flag("--now", request->now, "for this login session too");
  this_verb.callback([request] { run_settings(*request); });
}

}  // namespace command
