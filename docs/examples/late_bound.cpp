// late_bound TABLE: prints the number of rows, which is asked for by name.
#include <cstdio>
#include <exception>

#include "ovfile/smart.h"

static ovfile::variant call(IDispatch& object, const char* method) {
  ovfile::wide_string name;
  for (const char* letter = method; *letter != 0; ++letter) name += static_cast<OLECHAR>(*letter);
  OLECHAR* names[] = {name.data()};
  DISPID id = 0;
  ovfile::check(object.GetIDsOfNames(GUID{}, names, 1, 0, &id));
  DISPPARAMS none{};
  ovfile::variant result;
  EXCEPINFO failure{};
  ovfile::check(object.Invoke(id, GUID{}, 0, DISPATCH_METHOD, &none, result.out(), &failure, nullptr));
  return result;
}

int main(int count, char** arguments) {
  if (count != 2) return 2;
  try {
    auto table = ovfile::create_table();
    ovfile::check(table->Open(ovfile::text(arguments[1]).get(), 1));
    std::printf("%g\n", call(*table.get(), "getrowcount").number());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
