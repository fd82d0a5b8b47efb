#include "filter/foreign_signs.h"

#include <iterator>

namespace ovf::filter {

namespace {

constexpr std::string_view plain_quotes = "texts stand in plain quotes, ' or \"";
constexpr std::string_view write_minus = "write -";
constexpr std::string_view write_times = "write *";
constexpr std::string_view write_divided = "write /";
constexpr std::string_view write_power = "write ^ for a power, or the whole name in brackets";

struct hint {
  unsigned sign;
  std::string_view words;
};

constexpr hint hints[] = {
    {0x2265, "write >="},
    {0x2264, "write <="},
    {0x2A7E, "write >="},
    {0x2A7D, "write <="},
    {0x2267, "write >="},
    {0x2266, "write <="},
    {0x2260, "write <>"},
    {0x2212, write_minus},
    {0x2010, write_minus},
    {0x2011, write_minus},
    {0x2012, write_minus},
    {0x2013, write_minus},
    {0x2014, write_minus},
    {0x2015, write_minus},
    {0x00AD, write_minus},
    {0x00D7, write_times},
    {0x22C5, write_times},
    {0x2219, write_times},
    {0x2022, write_times},
    {0x00F7, write_divided},
    {0x2215, write_divided},
    {0x2044, write_divided},
    {0x2227, "write AND"},
    {0x2228, "write OR"},
    {0x00AC, "write NOT"},
    {0x2208, "write IN"},
    {0x2209, "write NOT IN"},
    {0x221A, "write sqrt( )"},
    {0x00B9, write_power},
    {0x00B2, write_power},
    {0x00B3, write_power},
    {0x2070, write_power},
    {0x00AB, plain_quotes},
    {0x00BB, plain_quotes},
    {0x2032, plain_quotes},
    {0x2033, plain_quotes},
    {0x2039, plain_quotes},
    {0x203A, plain_quotes},
    {0x3000, "write a plain blank"},
    {0x202F, "write a plain blank"},
    {0x205F, "write a plain blank"},
    {byte_order_mark, "a byte order mark stands at the beginning alone"},
};

constexpr std::string_view plain_signs[] = {"write !", "write \"", "write #", "write $", "write %",
                                            "write &", "write '",  "write (", "write )", "write *",
                                            "write +", "write ,",  "write -", "write .", "write /"};
constexpr std::string_view plain_relations[] = {
    "write :", "write ;", "write <", "write =", "write >", "write ?", "write @"};

}  // namespace

std::string_view hint_for(unsigned sign) noexcept {
  for (const hint& one : hints) {
    if (one.sign == sign) return one.words;
  }
  if (sign >= 0x2018 && sign <= 0x201F) return plain_quotes;
  if (sign >= 0x2000 && sign <= 0x200D) return "write a plain blank";
  if (sign >= 0x2074 && sign <= 0x2079) return write_power;
  if (sign >= 0xFF01 && sign <= 0xFF0F) return plain_signs[sign - 0xFF01];
  if (sign >= 0xFF1A && sign <= 0xFF20) return plain_relations[sign - 0xFF1A];
  return {};
}

}  // namespace ovf::filter
