#include "server/dispatch.h"

namespace ovf {

namespace {

constexpr auto ov_schema_members = member_list(std::to_array<dispatch_member>({
    getter<&IOvSchema::get_TypeHint>(1, OLESTR("TypeHint")),
    method<&IOvSchema::GetFieldDefault>(2, OLESTR("GetFieldDefault"), OLESTR("lIndex pVal")),
    method<&IOvSchema::SetFieldDefault>(3, OLESTR("SetFieldDefault"), OLESTR("lIndex newVal")),
    method<&IOvSchema::GetFieldOffset>(4, OLESTR("GetFieldOffset"), OLESTR("lIndex pVal")),
    method<&IOvSchema::SetFieldOffset>(5, OLESTR("SetFieldOffset"), OLESTR("lIndex newVal")),
    getter<&IOvSchema::get_ReadOnly>(6, OLESTR("ReadOnly")),
    putter<&IOvSchema::put_ReadOnly>(6, OLESTR("ReadOnly")),
    getter<&IOvSchema::get_FieldCount>(7, OLESTR("FieldCount")),
    putter<&IOvSchema::put_FieldCount>(7, OLESTR("FieldCount")),
    method<&IOvSchema::GetFieldName>(8, OLESTR("GetFieldName"), OLESTR("lIndex pVal")),
    method<&IOvSchema::SetFieldName>(9, OLESTR("SetFieldName"), OLESTR("lIndex newVal")),
    method<&IOvSchema::GetFieldType>(10, OLESTR("GetFieldType"), OLESTR("lIndex pVal")),
    method<&IOvSchema::SetFieldType>(11, OLESTR("SetFieldType"), OLESTR("lIndex newVal")),
    method<&IOvSchema::GetFieldIndex>(12, OLESTR("GetFieldIndex"), OLESTR("name pVal")),
    getter<&IOvSchema::get_Description>(13, OLESTR("Description")),
    putter<&IOvSchema::put_Description>(13, OLESTR("Description")),
    method<&IOvSchema::AddColumn>(15, OLESTR("AddColumn"), OLESTR("name type")),
    method<&IOvSchema::GetFieldSize>(16, OLESTR("GetFieldSize"), OLESTR("lIndex pVal")),
    method<&IOvSchema::SetFieldSize>(17, OLESTR("SetFieldSize"), OLESTR("lIndex newVal")),
    method<&IOvSchema::AddStringColumn>(18, OLESTR("AddStringColumn"),
                                        OLESTR("name length defaultValue implicit")),
    method<&IOvSchema::AddNumericColumn>(19, OLESTR("AddNumericColumn"),
                                         OLESTR("name defaultValue implicit")),
    getter<&IOvSchema::get_DoublePrecisionFlag>(20, OLESTR("DoublePrecisionFlag")),
    putter<&IOvSchema::put_DoublePrecisionFlag>(20, OLESTR("DoublePrecisionFlag")),
    method<&IOvSchema::CreateModelFile>(
        22, OLESTR("CreateModelFile"),
        OLESTR("dXINC dYINC dZINC dXMORIG dYMORIG dZMORIG Imin Imax Jmin Jmax Kmin Kmax")),
    method<&IOvSchema::CreatePointsFile>(23, OLESTR("CreatePointsFile")),
    method<&IOvSchema::CreateStringsFile>(24, OLESTR("CreateStringsFile")),
    method<&IOvSchema::CreateWfTriangleFile>(25, OLESTR("CreateWfTriangleFile")),
    method<&IOvSchema::CreateWfPointFile>(26, OLESTR("CreateWfPointFile")),
    method<&IOvSchema::IsFieldImplicit>(27, OLESTR("IsFieldImplicit"), OLESTR("lIndex pVal")),
    method<&IOvSchema::GetFieldSizeChars>(28, OLESTR("GetFieldSizeChars"), OLESTR("lIndex pVal")),
    getter<&IOvSchema::get_SpecialValueAbsent>(29, OLESTR("SpecialValueAbsent")),
    getter<&IOvSchema::get_SpecialValueTrace>(30, OLESTR("SpecialValueTrace")),
    getter<&IOvSchema::get_SpecialValueBottom>(31, OLESTR("SpecialValueBottom")),
    getter<&IOvSchema::get_SpecialValueTop>(32, OLESTR("SpecialValueTop")),
    method<&IOvSchema::CreateRegularGrid>(
        33, OLESTR("CreateRegularGrid"),
        OLESTR("dXINC dYINC dZINC dXMORIG dYMORIG dZMORIG Imax Jmax Kmax bIJK")),
    getter<&IOvSchema::get_DoublePrecision>(34, OLESTR("DoublePrecision")),
    putter<&IOvSchema::put_DoublePrecision>(34, OLESTR("DoublePrecision")),
    method<&IOvSchema::GetSchemaAsXML>(35, OLESTR("GetSchemaAsXML"), OLESTR("pVal")),
    method<&IOvSchema::SetSchemaUsingXML>(36, OLESTR("SetSchemaUsingXML"), OLESTR("newVal")),
    method<&IOvSchema::Merge>(37, OLESTR("Merge"), OLESTR("pSchema Mode")),
    getter<&IOvSchema::get_FieldNameMaxLength>(38, OLESTR("FieldNameMaxLength")),
    getter<&IOvSchema::get_UseLongFieldNames>(39, OLESTR("UseLongFieldNames")),
    getter<&IOvSchema::get_UseLongFieldNamesMaster>(40, OLESTR("UseLongFieldNamesMaster")),
    putter<&IOvSchema::put_UseLongFieldNamesMaster>(40, OLESTR("UseLongFieldNamesMaster")),
}));

constexpr method_table ov_schema_methods(ov_schema_members, CLSID_OvSchema, IID_IOvSchema);

}  // namespace

template <>
const dispatch_methods& methods_of<IOvSchema>() noexcept {
  return ov_schema_methods;
}

}  // namespace ovf
