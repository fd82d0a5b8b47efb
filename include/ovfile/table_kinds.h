// The kinds of table that `TypeHint` knows, each by the standard field names that make it out.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>

#include "ovfile/ovfile.h"

namespace ovfile {

inline constexpr std::size_t most_standard_fields = 24;

/// A schema is of this kind when it has a field for every one of the names; order and further fields are
/// of no account. Names are ASCII, of 1 to 8 characters, and match with regard to case; trailing blanks of
/// a field's name do not count.
///
/// A name that itself ends with a blank equals no field, and so its kind is never found. Whoever shows the
/// names leaves the blank where it is.
struct table_kind {
  OvFileType type;                                     ///< `TypeHint` adds ovGenericTable
  std::string_view name;                               ///< of the enumerator; empty for a type that has none
  std::string_view field_names[most_standard_fields];  ///< unused places are empty

  /// The names alone, 1 to 24 of them.
  constexpr std::span<const std::string_view> fields() const noexcept {
    const auto* end = std::find(std::begin(field_names), std::end(field_names), std::string_view());
    return {field_names, static_cast<std::size_t>(end - field_names)};
  }
};

/// In the order in which they are tried: the first kind whose fields are all there is the schema's.
inline constexpr table_kind table_kinds[] = {
    {ovString, "ovString", {"XP", "YP", "ZP", "PTN", "PVALUE"}},
    {ovPlot,
     "ovPlot",
     {"X", "Y", "S1", "S2", "CODE", "COLOUR", "XMIN", "XMAX", "YMIN", "YMAX", "XSCALE", "YSCALE", "XORIG",
      "YORIG", "CHARSIZE", "ASPRATIO"}},
    {ovDrillHole, "ovDrillHole", {"BHID", "FROM", "TO", "LENGTH", "X", "Y", "Z", "A0", "B0"}},
    {ovBlockModel,
     "ovBlockModel",
     {"IJK", "XC", "YC", "ZC", "XINC", "YINC", "ZINC", "XMORIG", "YMORIG", "ZMORIG", "NX", "NY", "NZ"}},
    {static_cast<OvFileType>(0x4000),
     "",
     {"XINC", "YINC", "ZINC", "XMORIG", "YMORIG", "ZMORIG", "NX", "NY", "NZ"}},
    {ovWireframe, "ovWireframe", {"TRIANGLE", "PID1", "PID2", "PID3"}},
    {ovWireframePoint, "ovWireframePoint", {"XP", "YP", "ZP", "PID"}},
    {ovSection, "ovSection", {"XCENTRE", "YCENTRE", "ZCENTRE", "SDIP", "SAZI"}},
    {ovCatalogue, "ovCatalogue", {"FILENAM"}},
    {ovSchedule,
     "ovSchedule",
     {"BLOCKID", "VOLUME", "TONNES", "DENSITY", "SLOT", "PERCENT", "DRAW", "START", "END"}},
    {ovResults, "ovResults", {"DENSITY", "VOLUME", "TONNES"}},
    {ovRosette,
     "ovRosette",
     {"ROSNUM", "ROSXPOS", "ROSYPOS", "ROSZMIN", "ROSZMAX", "ROSAZIM", "ROSFANG", "ROSBWID"}},
    {ovScheduleData,
     "ovScheduleData",
     {"PVALUE ", "VOLUME", "TONNES", "LENGTH", "ZMIN", "ZMAX", "GRADIENT", "XAREA"}},
    {ovDependency, "ovDependency", {"PNUM1", "PNUM2"}},
    {ovPen, "ovPen", {"COLOUR", "PEN"}},
    {ovFilter, "ovFilter", {"FIELD", "TEST", "IN", "OUT"}},
    {ovAssays, "ovAssays", {"BHID", "FROM", "TO"}},
    {ovCollars, "ovCollars", {"BHID", "XCOLLAR", "YCOLLAR", "ZCOLLAR"}},
    {ovDrillholeSurvey, "ovDrillholeSurvey", {"BHID", "AT", "BRG", "DIP"}},
    {ovBlastholePattern,
     "ovBlastholePattern",
     {"PATTERN", "DESC", "ROW", "ROFFSET", "SPACING", "BURDEN", "DIP", "RNINC", "RNREPEAT", "RNFIRST",
      "HNFIRST", "HNINC", "HLENGTH", "SAMPLENG", "STEMMING"}},
    {ovExperimentalVariogram,
     "ovExperimentalVariogram",
     {"AZI", "DIP", "LAG", "AVE.DIST", "NO.PAIRS", "COVAR", "VGRAM", "PWRVGRAM"}},
    {ovModelVariogram,
     "ovModelVariogram",
     {"VREFNUM", "VANGLE1", "VANGLE2", "VANGLE3", "VAXIS1", "VAXIS2", "VAXIS3", "NUGGET", "ST1", "ST1PAR1",
      "ST1PAR2", "ST1PAR3", "ST1PAR4"}},
    {static_cast<OvFileType>(0x10000), "", {"XP", "YP", "ZP", "AZI", "DIP", "ROLL", "RAD1", "RAD2", "RAD3"}},
    {ovPointData, "ovPointData", {"XPT", "YPT", "ZPT"}},
    {ovValidation, "ovValidation", {"ATTNAME", "ATTTYPE", "VALUE", "MIN", "MAX", "DEFAULT"}},
    {static_cast<OvFileType>(0x20000),
     "",
     {"XP", "YP", "ZP", "SDIP", "DIPDIRN", "SROLL", "HSIZE", "VSIZE", "IMAGE"}},
    {static_cast<OvFileType>(0x8000), "", {"XP", "YP", "ZP", "SDIP", "DIPDIRN", "HSIZE", "VSIZE"}},
    {ovEstimationParameters, "ovEstimationParameters", {"SREFNUM", "VALUE_IN"}},
    {ovSearchParameters,
     "ovSearchParameters",
     {"SREFNUM", "SMETHOD",  "SDIST1",  "SDIST2",  "SDIST3",   "SANGLE1",  "SANGLE2",  "SANGLE3",
      "SAXIS1",  "SAXIS2",   "SAXIS3",  "OCTMETH", "MINOCT",   "MINPEROC", "MAXPEROC", "MINNUM1",
      "MAXNUM1", "SVOLFAC2", "MINNUM2", "MAXNUM2", "SVOLFAC3", "MINNUM3",  "MAXNUM3",  "MAXKEY"}},
    {ovAdvancedEstimationSearchParameters,
     "ovAdvancedEstimationSearchParameters",
     {"SREFNUM", "SDIST1",  "SDIST2",  "SDIST3",  "SANGLE1",  "SANGLE2",  "SANGLE3",  "SAXIS1",
      "SAXIS2",  "SAXIS3",  "MINNUM1", "MAXNUM1", "SVOLFAC2", "MINNUM2",  "MAXNUM2",  "SVOLFAC3",
      "MINNUM3", "MAXNUM3", "MAXKEY",  "OPTKEY",  "NSECTORS", "SPLITSEC", "MAXEMPSC", "MVSEARCH"}},
    {ovSamplePairs,
     "ovSamplePairs",
     {"VLAGDIST", "VDIP", "VAZI", "WVDIP", "WVAZI", "DISTANCE", "DIP", "AZI", "WAZI", "WDIP", "X1", "Y1",
      "Z1", "X2", "Y2", "Z2", "GRADE1"}},
    {ovStatsOutput,
     "ovStatsOutput",
     {"FIELD", "NRECORDS", "NSAMPLES", "NMISVALS", "MINIMUM", "MAXIMUM", "RANGE", "TOTAL", "MEAN"}},
    {ovHistogram,
     "ovHistogram",
     {"LOWER", "MIDDLE", "UPPER", "FREQENCY", "CUMFREQ.", "AVIVAL", "FREQ-%", "CUMF-%", "TOTVA"}},
    {ovVolumeReport,
     "ovVolumeReport",
     {"VOLUME", "LOWAREA", "UPAREA", "TOTAREA", "MINDIP", "MAXDIP", "NUMTRI"}},
};

static_assert(std::size(table_kinds) == 34);

}  // namespace ovfile
