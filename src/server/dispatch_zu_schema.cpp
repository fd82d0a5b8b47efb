#include "server/dispatch.h"

namespace ovf {

namespace {

constexpr auto zu_schema_members = member_list(std::to_array<dispatch_member>({
    getter<&IZuCommonDataSchema::get_TypeHint>(1, OLESTR("TypeHint")),
    method<&IZuCommonDataSchema::Reserved1>(2, OLESTR("Reserved1")),
    method<&IZuCommonDataSchema::Reserved2>(3, OLESTR("Reserved2")),
    method<&IZuCommonDataSchema::Reserved3>(4, OLESTR("Reserved3")),
    method<&IZuCommonDataSchema::Reserved4>(5, OLESTR("Reserved4")),
    method<&IZuCommonDataSchema::Reserved5>(6, OLESTR("Reserved5")),
    method<&IZuCommonDataSchema::GetSchemaAsXML>(7, OLESTR("GetSchemaAsXML"), OLESTR("pVal")),
    method<&IZuCommonDataSchema::SetSchemaUsingXML>(8, OLESTR("SetSchemaUsingXML"), OLESTR("newVal")),
    method<&IZuCommonDataSchema::GetFieldDefault>(9, OLESTR("GetFieldDefault"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataSchema::SetFieldDefault>(10, OLESTR("SetFieldDefault"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataSchema::GetFieldOffset>(11, OLESTR("GetFieldOffset"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataSchema::SetFieldOffset>(12, OLESTR("SetFieldOffset"), OLESTR("lIndex newVal")),
    getter<&IZuCommonDataSchema::get_ReadOnly>(13, OLESTR("ReadOnly")),
    putter<&IZuCommonDataSchema::put_ReadOnly>(13, OLESTR("ReadOnly")),
    getter<&IZuCommonDataSchema::get_FieldCount>(15, OLESTR("FieldCount")),
    putter<&IZuCommonDataSchema::put_FieldCount>(15, OLESTR("FieldCount")),
    method<&IZuCommonDataSchema::GetFieldName>(17, OLESTR("GetFieldName"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataSchema::SetFieldName>(18, OLESTR("SetFieldName"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataSchema::GetFieldType>(19, OLESTR("GetFieldType"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataSchema::SetFieldType>(20, OLESTR("SetFieldType"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataSchema::GetFieldIndex>(21, OLESTR("GetFieldIndex"), OLESTR("name pVal")),
    getter<&IZuCommonDataSchema::get_Description>(22, OLESTR("Description")),
    putter<&IZuCommonDataSchema::put_Description>(22, OLESTR("Description")),
    method<&IZuCommonDataSchema::AddColumn>(24, OLESTR("AddColumn"), OLESTR("name type length")),
    method<&IZuCommonDataSchema::Reserved6>(25, OLESTR("Reserved6")),
    method<&IZuCommonDataSchema::GetFieldSize>(26, OLESTR("GetFieldSize"), OLESTR("lIndex pVal")),
    method<&IZuCommonDataSchema::SetFieldSize>(27, OLESTR("SetFieldSize"), OLESTR("lIndex newVal")),
    method<&IZuCommonDataSchema::Reserved7>(28, OLESTR("Reserved7")),
    method<&IZuCommonDataSchema::Reserved8>(29, OLESTR("Reserved8")),
}));

constexpr method_table zu_schema_methods(zu_schema_members, CLSID_OvSchema, IID_IZuCommonDataSchema);

}  // namespace

template <>
const dispatch_methods& methods_of<IZuCommonDataSchema>() noexcept {
  return zu_schema_methods;
}

}  // namespace ovf
