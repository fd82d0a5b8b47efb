// Any text as the registry's file: it reads, what is set in it reads back and is gone when it is deleted,
// every other line stays as it is, and the text that comes out reads the same.
#include <cstdint>
#include <string_view>

#include "platform/registry_document_linux.h"
#include "require.h"

namespace {

using action = ovf::registry_change::action;

const ovf::registry_key key{ovf::registry_root::current_user, OLESTR("Software\\Orvexa\\Fuzz")};
const ovf::registry_key below{ovf::registry_root::current_user, OLESTR("Software\\Orvexa\\Fuzz\\Below")};

void change(ovf::registry_document& document, const ovf::registry_change& made) {
  require(document.apply(made), "a good change is made");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string once = ovf::registry_document(bytes).content();
  ovf::registry_document document(once);
  require(document.content() == once, "what was written reads the same");
  change(document, {action::delete_tree, key});
  require(!document.has_key(key) && !document.has_key(below), "a deleted key is gone");
  const std::string without = document.content();
  change(document, {action::set_number, key, OLESTR("Number"), 0xFFFFFFFF});
  change(document, {action::set_text, below, OLESTR("a \"b\" \\c"), 0, OLESTR("d\\ \"e\"")});
  document = ovf::registry_document(document.content());
  require(document.number(key, OLESTR("number")) == 0xFFFFFFFFu, "a number reads back");
  require(document.text(below, OLESTR("A \"B\" \\C")) == OLESTR("d\\ \"e\""), "a text reads back");
  change(document, {action::delete_tree, key});
  require(!document.has_key(key), "and is deleted");
  const ovf::registry_document before(without);
  require(document.text({ovf::registry_root::classes, OLESTR("A")}, {}) ==
              before.text({ovf::registry_root::classes, OLESTR("A")}, {}),
          "other keys stay");
  return 0;
}
