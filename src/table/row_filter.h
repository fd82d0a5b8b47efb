// The filter of a table object: one expression, which the current row passes or not. What expressions
// mean is the evaluator's business, a component of its own that is created when it is first needed.
#pragma once

#include <vector>

#include "ovfile/filter.h"
#include "ovfile/smart.h"
#include "table/table_core.h"

namespace ovf {

/// There is no evaluator to be had.
struct no_evaluator {};

class row_filter {
 public:
  /// All of them throw no_evaluator, also where nothing needs to be evaluated.
  const wide& expression();
  /// A bad expression is kept like any other; what is wrong with it the evaluator says by the thread's
  /// error information, which a good one leaves empty.
  void set_expression(wide_view text);
  /// VARIANT_TRUE without an expression, else 1 or 0. The current row is read as a host's `GetColumn`
  /// reads it, and throws what that throws; not_open without a table or its schema, for then every
  /// variable would be absent.
  VARIANT_BOOL passes(const table_core& core);

 private:
  void need_evaluator();
  /// Brings `columns_` up to the expression and the schema.
  void find_columns(IOvSchema& schema);
  bool test_values(const table_core& core);
  bool test_text(const table_core& core);
  void give(const table_core& core, std::size_t variable);

  wide text_;
  ovfile::pointer<IOvFilter> evaluator_;
  ovfile::pointer<IOvFilterValues> values_;  ///< null for an evaluator that takes texts alone
  std::vector<LONG> columns_;                ///< of the expression's variables; 0 for a field not there
  std::uint64_t columns_stamp_ = 0;          ///< of the fields that they were found in; 0: find them anew
};

}  // namespace ovf
