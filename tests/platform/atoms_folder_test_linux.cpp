// The folder that the session's atoms lie in, and whom it is trusted to.
#include <sys/stat.h>
#include <unistd.h>

#include "environment_linux.h"
#include "platform/atoms.h"

namespace {

class atoms_folder : public ovtest::environment_test {
 protected:
  atoms_folder() : place(folder / "atoms") { set("OVFILE_ATOMS", place.string()); }
  std::filesystem::path place;
};

TEST_F(atoms_folder, is_made_for_its_owner_alone) {
  EXPECT_FALSE(ovf::global_atom_exists(u"MaxFieldNameLength"));
  EXPECT_FALSE(std::filesystem::exists(place));
  EXPECT_TRUE(ovf::add_global_atom(u"MaxFieldNameLength"));
  EXPECT_TRUE(ovf::global_atom_exists(u"MaxFieldNameLength"));
  EXPECT_TRUE(std::filesystem::is_regular_file(place / "MaxFieldNameLength"));
  EXPECT_EQ(std::filesystem::status(place).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(atoms_folder, names_are_percent_encoded) {
  EXPECT_TRUE(ovf::add_global_atom(u"../a b%\u00E9"));
  EXPECT_TRUE(std::filesystem::exists(place / "%2E%2E%2Fa%20b%25%C3%A9"));
  EXPECT_TRUE(ovf::global_atom_exists(u"../a b%\u00E9"));
  EXPECT_FALSE(ovf::global_atom_exists(u"a b%\u00E9"));
}

TEST_F(atoms_folder, adding_twice_succeeds) {
  EXPECT_TRUE(ovf::add_global_atom(u"a"));
  EXPECT_TRUE(ovf::add_global_atom(u"a"));
}

TEST_F(atoms_folder, a_link_is_not_used) {
  std::filesystem::create_directory(folder / "elsewhere");
  write(folder / "elsewhere" / "a", "");
  std::filesystem::create_directory_symlink(folder / "elsewhere", place);
  EXPECT_FALSE(ovf::global_atom_exists(u"a"));
  EXPECT_FALSE(ovf::add_global_atom(u"b"));
  set("OVFILE_ATOMS", place.string() + "//");
  EXPECT_FALSE(ovf::global_atom_exists(u"a"));
  EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere" / "b"));
}

TEST_F(atoms_folder, another_users_is_not_used) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  std::filesystem::create_directory(place);
  write(place / "a", "");
  ASSERT_EQ(chown(place.c_str(), 12345, 12345), 0);
  EXPECT_FALSE(ovf::global_atom_exists(u"a"));
  EXPECT_FALSE(ovf::add_global_atom(u"b"));
  EXPECT_FALSE(std::filesystem::exists(place / "b"));
}

TEST_F(atoms_folder, a_file_in_its_place_holds_none) {
  write(place, "");
  EXPECT_FALSE(ovf::global_atom_exists(u"a"));
  EXPECT_FALSE(ovf::add_global_atom(u"a"));
}

TEST_F(atoms_folder, a_link_or_a_folder_is_no_atom) {
  std::filesystem::create_directory(place);
  std::filesystem::create_symlink("/etc/passwd", place / "a");
  std::filesystem::create_directory(place / "b");
  EXPECT_FALSE(ovf::global_atom_exists(u"a"));
  EXPECT_FALSE(ovf::global_atom_exists(u"b"));
}

TEST_F(atoms_folder, lies_in_the_runtime_folder_when_nothing_else_is_said) {
  unset("OVFILE_ATOMS");
  set("XDG_RUNTIME_DIR", folder.string());
  EXPECT_TRUE(ovf::add_global_atom(u"a"));
  EXPECT_TRUE(std::filesystem::exists(folder / "orvexa-atoms" / "a"));
}

TEST_F(atoms_folder, a_name_too_long_for_a_file_is_refused) {
  EXPECT_FALSE(ovf::add_global_atom(std::u16string(300, u'a')));
}

}  // namespace
