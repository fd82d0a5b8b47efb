"""Fails on a source of the product that uses a name of the standard library whose header neither it nor a header of
the product that it includes brings along. A compiler does not tell where those headers are precompiled."""

import functools
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = (ROOT / "src", ROOT / "src" / "command", ROOT / "include")

# The precompiled ones of cmake/settings.cmake with those that come with them, and what is theirs alone.
NAMES = {
    "algorithm": r"std::(?:min|max|clamp|sort|stable_sort|find|find_if|find_if_not|any_of|all_of|none_of|count_if|"
                 r"copy|copy_n|fill|fill_n|reverse|rotate|unique|remove_if|lower_bound|upper_bound|equal_range|"
                 r"transform|equal|mismatch|search|binary_search|max_element|min_element|replace|"
                 r"lexicographical_compare|ranges::\w+)\b",
    "array": r"std::array\b",
    "atomic": r"std::(?:atomic\w*|memory_order\w*)\b",
    "charconv": r"std::(?:to|from)_chars\b",
    "chrono": r"std::chrono\b",
    "filesystem": r"std::filesystem\b",
    "functional": r"std::(?:function|less|greater|hash|reference_wrapper|ref|cref|bind_front|plus|multiplies)\b",
    "limits": r"std::numeric_limits\b",
    "memory": r"std::(?:unique_ptr|shared_ptr|weak_ptr|make_unique|make_shared|addressof|allocator)\b",
    "optional": r"std::(?:optional|nullopt|make_optional)\b",
    "numeric": r"std::(?:accumulate|iota|gcd|lcm|reduce)\b",
    "span": r"std::(?:span|as_bytes|as_writable_bytes)\b",
    "string": r"std::(?:string|to_string|basic_string|u16string|wstring|getline|stoi|stol|stod)\b",
    "string_view": r"std::(?:string_view|basic_string_view|u16string_view|wstring_view)\b",
    "sstream": r"std::\w?o?i?stringstream\b",
    "stdexcept": r"std::(?:runtime_error|logic_error|out_of_range|invalid_argument|length_error)\b",
    "system_error": r"std::(?:error_code|errc|system_error|system_category|generic_category)\b",
    "tuple": r"std::(?:tuple|tie|make_tuple|apply)\b",
    "type_traits": r"std::(?:is_same|is_same_v|is_integral_v|is_floating_point_v|conditional_t|decay_t|"
                   r"remove_\w+_t|make_unsigned_t|make_signed_t|enable_if_t)\b",
    "unordered_map": r"std::unordered_map\b",
    "utility": r"std::(?:exchange|pair|as_const|in_place|index_sequence)\b",
    "variant": r"std::(?:variant|visit|holds_alternative|monostate)\b",
    "vector": r"std::vector\b",
}
NAMES = {header: re.compile(names) for header, names in NAMES.items()}
# Headers that promise to declare what others define.
ALSO = {"string": {"string_view"}, "filesystem": {"chrono", "string", "string_view", "system_error"},
        "charconv": {"system_error"}, "ranges": {"span"}}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^">]+)[">]', re.MULTILINE)
COMMENT = re.compile(r"//.*")


def own_header(name, beside):
    """The product's header of that name as the compiler finds it; nothing for anybody else's."""
    return next((path for path in (beside / name, *(folder / name for folder in FOLDERS)) if path.is_file()), None)


@functools.cache
def brought(path):
    """The standard's headers that come with a file, and the file's text without comments."""
    text = path.read_text(encoding="utf-8")
    headers = set()
    for kind, name in INCLUDE.findall(text):
        found = own_header(name, path.parent) if kind == '"' else None
        if found:
            headers |= brought(found)[0]
        else:
            headers |= {name} | ALSO.get(name, set())
    return headers, COMMENT.sub("", text)


def complaints(path):
    headers, text = brought(path)
    for header, names in NAMES.items():
        used = names.search(text)
        if used and header not in headers:
            yield f"{path.relative_to(ROOT)}: {used.group(0)} needs <{header}>"


def main():
    found = []
    for path in sorted((ROOT / "src").rglob("*")):
        if path.suffix in (".h", ".cpp"):
            found.extend(complaints(path))
    print("\n".join(found))
    sys.exit(1 if found else 0)


main()
