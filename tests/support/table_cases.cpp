#include "support/table_cases.h"

namespace ovtest {

std::vector<table_case> table_cases() {
  std::vector<table_case> cases;
  add_precision_cases(cases);
  add_text_cases(cases);
  add_page_cases(cases);
  return cases;
}

}  // namespace ovtest
