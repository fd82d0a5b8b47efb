#include "table/edit_words.h"

#include "table/table_replacement.h"
#include "table/work_progress.h"

namespace ovf {

edit_refusal refusal_in_flight(const edit_words& words) {
  try {
    throw;
  } catch (const no_copy_made& failure) {
    return {wide_format(words.no_copy).arg(wide_view(failure.reason)).text(), E_FAIL};
  } catch (const not_replaced& refusal) {
    return {
        wide_format(words.not_replaced).arg(wide_view(refusal.path)).arg(wide_view(refusal.reason)).text(),
        E_FAIL};
  } catch (const not_reopened& failure) {
    return {
        wide_format(words.not_reopened).arg(wide_view(failure.path)).arg(wide_view(failure.reason)).text(),
        E_FAIL};
  } catch (const not_restored& failure) {
    return {wide_format(words.not_restored)
                .arg(wide_view(failure.refusal.path))
                .arg(wide_view(failure.refusal.reason))
                .arg(wide_view(failure.reason))
                .text(),
            E_FAIL};
  } catch (const work_stopped&) {
    return {wide(words.stopped), E_ABORT};
  }
}

}  // namespace ovf
