#include "kind_words.h"

#include <cstdint>

#include "words.h"

namespace command {
namespace {

struct named_kind {
  OvFileType kind;
  const char* words;
};

constexpr named_kind named_kinds[] = {
    {ovNothing, "table"},
    {ovPerimeter, "perimeters"},
    {ovString, "strings"},
    {ovDrillHole, "drillhole"},
    {ovWireframe, "wireframe triangles"},
    {ovDtm, "terrain model"},
    {ovBlockModel, "block model"},
    {ovWireframePoint, "wireframe points"},
    {ovPlot, "plot"},
    {ovResults, "results"},
    {ovCrossSection, "cross-section"},
    {ovPointData, "points"},
    {ovSchedule, "schedule"},
    {ovAssays, "assays"},
    {ovCollars, "collars"},
    {ovNUL, "nul"},
    {ovSection, "section"},
    {ovCatalogue, "catalogue"},
    {ovRosette, "rosette"},
    {ovScheduleData, "schedule data"},
    {ovCalendar, "calendar"},
    {ovGraphics, "graphics"},
    {ovDependency, "dependencies"},
    {ovPen, "pens"},
    {ovFilter, "filter"},
    {ovValidation, "validation"},
    {ovBlastholePattern, "blasthole pattern"},
    {ovDrillholeSurvey, "drillhole survey"},
    {ovExperimentalVariogram, "experimental variogram"},
    {ovModelVariogram, "model variogram"},
    {ovRigDefinition, "rig definition"},
    {ovDesign, "design"},
    {ovMacro, "macro"},
    {ovPlotFile, "plot file"},
    {ovStereonet, "stereonet"},
    {ovVisualiser, "visualiser"},
    {ovWebBrowser, "web browser"},
    {ovImage, "image"},
    {ovEstimationParameters, "estimation parameters"},
    {ovSearchParameters, "search parameters"},
    {ovAdvancedEstimationSearchParameters, "advanced estimation search parameters"},
    {ovSamplePairs, "sample pairs"},
    {ovStatsOutput, "statistics"},
    {ovHistogram, "histogram"},
    {ovVolumeReport, "volume report"},
    {ovPicture, "picture"},
};

}  // namespace

std::string kind_words(OvFileType hint) {
  const std::uint32_t kind = static_cast<std::uint32_t>(hint) & ~static_cast<std::uint32_t>(ovGenericTable);
  for (const named_kind& known : named_kinds) {
    if (static_cast<std::uint32_t>(known.kind) == kind) return known.words;
  }
  return fmt::format("kind 0x{:X}", kind);
}

}  // namespace command
