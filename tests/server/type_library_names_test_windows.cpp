// The enumerations of the type library: every name with its value.
#include <gtest/gtest.h>

#include <map>

#include "support/component.h"

namespace ovtest {
namespace {

using values = std::map<std::string, LONG>;

/// The enumeration of that name in the library that describes the library's objects.
values enumeration(const std::string& wanted) {
  ovfile::pointer<ITypeInfo> info;
  ovfile::pointer<ITypeLib> library;
  UINT index = 0;
  EXPECT_EQ(S_OK, make_table()->GetTypeInfo(0, 0, info.out()));
  EXPECT_EQ(S_OK, info->GetContainingTypeLib(library.out(), &index));
  values found;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    bstr name;
    EXPECT_EQ(S_OK, library->GetDocumentation(static_cast<INT>(i), name.out(), nullptr, nullptr, nullptr));
    if (name.utf8() != wanted) continue;
    EXPECT_EQ(S_OK, library->GetTypeInfo(i, info.out()));
    VARDESC* member = nullptr;
    for (UINT k = 0; info->GetVarDesc(k, &member) == S_OK; ++k) {
      bstr text;
      UINT count = 0;
      EXPECT_EQ(S_OK, info->GetNames(member->memid, text.out(), 1, &count));
      EXPECT_EQ(VAR_CONST, member->varkind);
      found[text.utf8()] = member->lpvarValue->lVal;
      info->ReleaseVarDesc(member);
    }
  }
  return found;
}

TEST(type_library_names, of_column_types) {
  EXPECT_EQ((values{{"ovColumnSingle", 1}, {"ovColumnDouble", 2}, {"ovColumnString", 3}}),
            enumeration("OvColumnType"));
}

TEST(type_library_names, of_merge_modes) {
  EXPECT_EQ((values{{"ovSchemaMergeModeMatching", 0}, {"ovSchemaMergeModeAll", 1}}),
            enumeration("OvSchemaMergeMode"));
}

TEST(type_library_names, of_file_types) {
  const values expected{{"ovNothing", 0},
                        {"ovGenericTable", 0x40000000},
                        {"ovPerimeter", 0x1},
                        {"ovString", 0x2},
                        {"ovDrillHole", 0x4},
                        {"ovWireframe", 0x8},
                        {"ovDtm", 0x10},
                        {"ovBlockModel", 0x20},
                        {"ovWireframePoint", 0x40},
                        {"ovPlot", 0x80},
                        {"ovResults", 0x100},
                        {"ovCrossSection", 0x200},
                        {"ovPointData", 0x400},
                        {"ovSchedule", 0x800},
                        {"ovAssays", 0x1000},
                        {"ovCollars", 0x2000},
                        {"ovNUL", 0x01000000},
                        {"ovSection", 0x02000000},
                        {"ovCatalogue", 0x03000000},
                        {"ovRosette", 0x04000000},
                        {"ovScheduleData", 0x05000000},
                        {"ovCalendar", 0x06000000},
                        {"ovGraphics", 0x07000000},
                        {"ovDependency", 0x08000000},
                        {"ovPen", 0x09000000},
                        {"ovFilter", 0x0A000000},
                        {"ovValidation", 0x0B000000},
                        {"ovBlastholePattern", 0x0C000000},
                        {"ovDrillholeSurvey", 0x0D000000},
                        {"ovExperimentalVariogram", 0x0E000000},
                        {"ovModelVariogram", 0x0F000000},
                        {"ovRigDefinition", 0x10000000},
                        {"ovDesign", 0x11000000},
                        {"ovMacro", 0x12000000},
                        {"ovPlotFile", 0x13000000},
                        {"ovStereonet", 0x14000000},
                        {"ovVisualiser", 0x15000000},
                        {"ovWebBrowser", 0x16000000},
                        {"ovImage", 0x17000000},
                        {"ovEstimationParameters", 0x18000000},
                        {"ovSearchParameters", 0x19000000},
                        {"ovAdvancedEstimationSearchParameters", 0x1A000000},
                        {"ovSamplePairs", 0x1B000000},
                        {"ovStatsOutput", 0x1C000000},
                        {"ovHistogram", 0x1D000000},
                        {"ovVolumeReport", 0x1E000000},
                        {"ovPicture", 0x1F000000},
                        {"ovEverything", -1}};
  EXPECT_EQ(expected, enumeration("OvFileType"));
}

}  // namespace
}  // namespace ovtest
