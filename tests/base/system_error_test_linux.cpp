#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>

#include "base/system_error.h"

namespace {

TEST(system_error, the_text_is_the_untranslated_one) {
  std::setlocale(LC_ALL, "");
  EXPECT_EQ(ovf::system_message(ENOENT), u"No such file or directory");
  EXPECT_EQ(ovf::system_message(EACCES), u"Permission denied");
  EXPECT_EQ(ovf::system_message(0), u"Success");
  std::setlocale(LC_ALL, "C");
}

TEST(system_error, the_last_code_is_errno) {
  errno = ENOSPC;
  EXPECT_EQ(ovf::last_system_error(), static_cast<ovf::system_code>(ENOSPC));
}

TEST(system_error, the_last_code_is_a_status) {
  for (const int code : {EACCES, EPERM, EROFS}) {
    errno = code;
    EXPECT_EQ(ovf::last_error_status(), E_ACCESSDENIED);
  }
  errno = ENOMEM;
  EXPECT_EQ(ovf::last_error_status(), E_OUTOFMEMORY);
  errno = ENOSPC;
  EXPECT_EQ(ovf::last_error_status(), E_FAIL);
}

}  // namespace
