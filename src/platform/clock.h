// Today's date in UTC.
#pragma once

namespace ovf {

struct utc_date {
  int day;    ///< 1 to 31
  int month;  ///< 1 to 12
  int year;   ///< four digits
};

utc_date today_utc();

}  // namespace ovf
