// The type library that the module carries, held against the tables of late binding and, by calling
// through it, against the tables of functions.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "server/dispatch.h"
#include "server/recording_schema.h"
#include "server/recording_table.h"
#include "server/recording_table_ado.h"
#include "server/recording_zu_schema.h"
#include "server/recording_zu_table.h"

namespace ovtest {
namespace {

/// The description that the object hands out, as the dual interface's table of functions has it.
ovfile::pointer<ITypeInfo> functions_of(IDispatch& object) {
  ovfile::pointer<ITypeInfo> names;
  ovfile::pointer<ITypeInfo> functions;
  HREFTYPE reference = 0;
  EXPECT_EQ(S_OK, object.GetTypeInfo(0, 0, names.out()));
  EXPECT_EQ(S_OK, names->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  EXPECT_EQ(S_OK, names->GetRefTypeInfo(reference, functions.out()));
  return functions;
}

std::string lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

/// The function's name and those of its parameters, parted by blanks, in lower case.
std::string names_of(ITypeInfo& info, const FUNCDESC& function) {
  BSTR names[16] = {};
  UINT count = 0;
  EXPECT_EQ(S_OK, info.GetNames(function.memid, names, 16, &count));
  std::string text;
  for (UINT i = 0; i < count; ++i) {
    text += (i == 0 ? "" : " ") + lower(to_utf8(names[i]));
    SysFreeString(names[i]);
  }
  return text;
}

/// What the type is for a late-bound caller: an enumeration is a number, an interface an object.
VARTYPE late_type(ITypeInfo& info, const TYPEDESC& type) {
  if (type.vt == VT_PTR && type.lptdesc->vt == VT_USERDEFINED) return VT_DISPATCH;
  if (type.vt == VT_PTR && type.lptdesc->vt == VT_I4) return VT_BYREF | VT_I4;
  if (type.vt != VT_USERDEFINED) return type.vt;
  ovfile::pointer<ITypeInfo> named;
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(S_OK, info.GetRefTypeInfo(type.hreftype, named.out()));
  EXPECT_EQ(S_OK, named->GetTypeAttr(&attributes));
  EXPECT_EQ(TKIND_ENUM, attributes->typekind);
  named->ReleaseTypeAttr(attributes);
  return VT_I4;
}

bool is_result(const ELEMDESC& parameter) {
  return (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
}

void hold_parameters(ITypeInfo& info, const FUNCDESC& function, const ovf::dispatch_member& member) {
  std::size_t inputs = static_cast<std::size_t>(function.cParams);
  VARTYPE result = VT_EMPTY;
  if (inputs != 0 && is_result(function.lprgelemdescParam[inputs - 1])) {
    const TYPEDESC& last = function.lprgelemdescParam[--inputs].tdesc;
    ASSERT_EQ(VT_PTR, last.vt);
    result = late_type(info, *last.lptdesc);
  }
  EXPECT_EQ(member.result, result);
  ASSERT_EQ(member.types.size(), inputs);
  for (std::size_t i = 0; i < inputs; ++i) {
    EXPECT_EQ(member.types[i], late_type(info, function.lprgelemdescParam[i].tdesc)) << i;
  }
}

/// What both are called: a getter's name is that of its property.
std::string names_in_table(const ovf::dispatch_member& member) {
  wide text(member.name);
  // A putter's last argument has no name in a type library.
  wide parameters(member.parameters);
  if (member.kind == DISPATCH_PROPERTYPUT) {
    const std::size_t blank = parameters.rfind(L' ');
    parameters.resize(blank == wide::npos ? 0 : blank);
  }
  if (member.result != VT_EMPTY) {
    const std::size_t blank = parameters.rfind(L' ');
    parameters.resize(blank == wide::npos ? 0 : blank);
  }
  if (!parameters.empty()) text.append(L" ").append(parameters);
  return lower(to_utf8(text));
}

VARIANT empty_argument(VARTYPE type) {
  static LONG buffer[1024];
  VARIANT made;
  VariantInit(&made);
  made.vt = type == VT_VARIANT ? VARTYPE{VT_I4} : type;
  if (type == (VT_BYREF | VT_I4)) made.plVal = buffer;
  return made;
}

/// Calls through the type library, which looks up the place in the table of functions.
HRESULT call_described(ITypeInfo& info, IDispatch& object, const ovf::dispatch_member& member) {
  std::vector<VARIANT> arguments;
  for (const VARTYPE type : member.types) arguments.insert(arguments.begin(), empty_argument(type));
  DISPID put = DISPID_PROPERTYPUT;
  const bool puts = member.kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS given{arguments.data(), puts ? &put : nullptr, static_cast<UINT>(arguments.size()),
                   puts ? 1U : 0U};
  variant result;
  EXCEPINFO exception{};
  UINT bad = 0;
  return info.Invoke(&object, member.id, member.kind, &given, puts ? nullptr : result.out(), &exception,
                     &bad);
}

template <class Recording, class Interface>
void hold_against_type_library(UINT expected_count) {
  const auto& table = static_cast<const ovf::method_table&>(ovf::methods_of<Interface>());
  const recorded<Recording, Interface> object;
  const auto info = functions_of(object.dispatch());
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
  EXPECT_EQ(ovf::iid_of<Interface>, attributes->guid);
  EXPECT_EQ(expected_count, attributes->cFuncs);
  info->ReleaseTypeAttr(attributes);
  ASSERT_EQ(expected_count, table.members().size());
  for (UINT i = 0; i < expected_count; ++i) {
    const ovf::dispatch_member& member = table.members()[i];
    SCOPED_TRACE(to_utf8(member.name));
    FUNCDESC* function = nullptr;
    ASSERT_EQ(S_OK, info->GetFuncDesc(i, &function));
    EXPECT_EQ(static_cast<SHORT>((7 + i) * sizeof(void*)), function->oVft);
    EXPECT_EQ(member.id, function->memid);
    EXPECT_EQ(static_cast<INVOKEKIND>(member.kind), function->invkind);
    EXPECT_EQ(CC_STDCALL, function->callconv);
    const std::string described = names_of(*info.get(), *function);
    EXPECT_EQ(names_in_table(member), described.substr(0, names_in_table(member).size()));
    hold_parameters(*info.get(), *function, member);
    info->ReleaseFuncDesc(function);

    object.record().last.clear();
    EXPECT_EQ(S_OK, call_described(*info.get(), object.dispatch(), member));
    const std::string prefix = member.kind == DISPATCH_PROPERTYGET   ? "get_"
                               : member.kind == DISPATCH_PROPERTYPUT ? "put_"
                                                                     : "";
    const std::string called = prefix + to_utf8(member.name) + "(";
    EXPECT_EQ(called, object.record().last.substr(0, called.size()));
  }
}

TEST(type_library, agrees_on_the_table) { hold_against_type_library<recording_table, IOvTable>(51); }
TEST(type_library, agrees_on_the_schema) { hold_against_type_library<recording_schema, IOvSchema>(44); }
TEST(type_library, agrees_on_the_record_set) {
  hold_against_type_library<recording_table_ado, IOvTableADO>(23);
}
TEST(type_library, agrees_on_the_common_table) {
  hold_against_type_library<recording_zu_table, IZuCommonDataTable>(52);
}
TEST(type_library, agrees_on_the_common_schema) {
  hold_against_type_library<recording_zu_schema, IZuCommonDataSchema>(29);
}

ovfile::pointer<ITypeLib> own_library() {
  ovfile::pointer<ITypeInfo> info;
  ovfile::pointer<ITypeLib> library;
  UINT index = 0;
  EXPECT_EQ(S_OK, make_table()->GetTypeInfo(0, 0, info.out()));
  EXPECT_EQ(S_OK, info->GetContainingTypeLib(library.out(), &index));
  return library;
}

TEST(type_library, has_its_identifier_and_version) {
  const auto library = own_library();
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, library->GetLibAttr(&attributes));
  EXPECT_EQ(LIBID_OvFileLib, attributes->guid);
  EXPECT_EQ(1, attributes->wMajorVerNum);
  EXPECT_EQ(0, attributes->wMinorVerNum);
  EXPECT_EQ(SYS_WIN64, attributes->syskind);
  library->ReleaseTLibAttr(attributes);
  bstr name;
  ASSERT_EQ(S_OK, library->GetDocumentation(-1, name.out(), nullptr, nullptr, nullptr));
  EXPECT_EQ("OvFileLib", name.utf8());
}

/// The names of a class's interfaces, its default one first.
std::string interfaces_of(ITypeInfo& coclass) {
  TYPEATTR* attributes = nullptr;
  if (coclass.GetTypeAttr(&attributes) != S_OK) return "?";
  EXPECT_EQ(TKIND_COCLASS, attributes->typekind);
  const UINT count = attributes->cImplTypes;
  coclass.ReleaseTypeAttr(attributes);
  std::string names;
  for (UINT i = 0; i < count; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    ovfile::pointer<ITypeInfo> info;
    bstr name;
    EXPECT_EQ(S_OK, coclass.GetRefTypeOfImplType(i, &reference));
    EXPECT_EQ(S_OK, coclass.GetImplTypeFlags(i, &flags));
    EXPECT_EQ(S_OK, coclass.GetRefTypeInfo(reference, info.out()));
    EXPECT_EQ(S_OK, info->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr));
    EXPECT_EQ(i == 0, (flags & IMPLTYPEFLAG_FDEFAULT) != 0);
    names += name.utf8() + ' ';
  }
  return names;
}

TEST(type_library, has_the_classes_with_their_interfaces) {
  const auto library = own_library();
  const std::tuple<CLSID, const char*, const char*> expected[] = {
      {CLSID_OvTable, "OvTable Class", "IOvTable IZuCommonDataTable "},
      {CLSID_OvSchema, "OvSchema Class", "IOvSchema IZuCommonDataSchema "},
      {CLSID_OvTableADO, "OvTableADO Class", "IOvTableADO "}};
  for (const auto& [id, documentation, interfaces] : expected) {
    ovfile::pointer<ITypeInfo> info;
    bstr text;
    ASSERT_EQ(S_OK, library->GetTypeInfoOfGuid(id, info.out()));
    EXPECT_EQ(S_OK, info->GetDocumentation(MEMBERID_NIL, nullptr, text.out(), nullptr, nullptr));
    EXPECT_EQ(documentation, text.utf8());
    EXPECT_EQ(interfaces, interfaces_of(*info.get()));
  }
}

TEST(type_library, warns_of_what_only_a_call_by_name_makes_harmless) {
  const std::string put = "A put takes over the caller's reference, unless it is made by name";
  const std::string merge = "Throws a C++ exception when it is refused, unless it is called by name";
  const std::tuple<IID, MEMBERID, std::string> expected[] = {
      {IID_IOvTable, 7, put}, {IID_IOvTableADO, 1, put}, {IID_IOvSchema, 37, merge}};
  for (const auto& [id, member, help] : expected) {
    ovfile::pointer<ITypeInfo> info;
    bstr text;
    ASSERT_EQ(S_OK, own_library()->GetTypeInfoOfGuid(id, info.out()));
    EXPECT_EQ(S_OK, info->GetDocumentation(member, nullptr, text.out(), nullptr, nullptr));
    EXPECT_EQ(help, text.utf8());
  }
}

TEST(type_library, has_the_dummy_class) {
  const CLSID dummy{0xB7D30C58, 0x2E19, 0x46AF, {0x8D, 0x4B, 0x0A, 0x6F, 0x53, 0xE1, 0x2C, 0x97}};
  ovfile::pointer<ITypeInfo> info;
  bstr name;
  bstr text;
  ASSERT_EQ(S_OK, own_library()->GetTypeInfoOfGuid(dummy, info.out()));
  EXPECT_EQ(S_OK, info->GetDocumentation(MEMBERID_NIL, name.out(), text.out(), nullptr, nullptr));
  EXPECT_EQ("X_DummyClassOvFileLib", name.utf8());
  EXPECT_EQ("Dummy class to prevent TlbImp optimizing interfaces into classes.", text.utf8());
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
  EXPECT_EQ(TYPEFLAG_FHIDDEN, attributes->wTypeFlags) << "nobody is offered it, and nobody can make one";
  info->ReleaseTypeAttr(attributes);
  void* found = &info;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, DllGetClassObject(dummy, IID_IClassFactory, &found));
}

TEST(type_library, is_where_an_object_tells_its_class) {
  for (const CLSID& id : {CLSID_OvTable, CLSID_OvSchema, CLSID_OvTableADO}) {
    ovfile::pointer<IClassFactory> factory;
    ovfile::pointer<IProvideClassInfo> object;
    void* found = nullptr;
    ASSERT_EQ(S_OK, DllGetClassObject(id, IID_IClassFactory, &found));
    *factory.out() = static_cast<IClassFactory*>(found);
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IProvideClassInfo, &found));
    *object.out() = static_cast<IProvideClassInfo*>(found);
    ovfile::pointer<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, object->GetClassInfo(info.out()));
    ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
    EXPECT_EQ(id, attributes->guid);
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(E_POINTER, object->GetClassInfo(nullptr));
  }
}

}  // namespace
}  // namespace ovtest
