#include "platform/clock.h"

#include <chrono>

namespace ovf {

utc_date today_utc() {
  using namespace std::chrono;
  // The system clock counts from 1970-01-01 in UTC everywhere.
  const year_month_day today{floor<days>(system_clock::now())};
  return {static_cast<int>(static_cast<unsigned>(today.day())),
          static_cast<int>(static_cast<unsigned>(today.month())), static_cast<int>(today.year())};
}

}  // namespace ovf
