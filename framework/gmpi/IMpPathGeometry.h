// Path geometries: figures of lines, curves and arcs, filled or stroked by a device context. A path is
// opened once to receive its figures through a geometry sink.
#pragma once

#include "IMpResource.h"
#include "MpDrawingTypes.h"

namespace GmpiDrawing_API {

// {B9C34412-C0FB-4619-8B2F-2CE6AE29C18C}
inline constexpr gmpi::MpGuid SE_IID_PATHGEOMETRY_MPGUI = {
    0xB9C34412, 0xC0FB, 0x4619, {0x8B, 0x2F, 0x2C, 0xE6, 0xAE, 0x29, 0xC1, 0x8C}};
// {5CC0B910-1C37-4698-9B59-0814E27491F8}
inline constexpr gmpi::MpGuid SE_IID_GEOMETRYSINK_MPGUI = {
    0x5CC0B910, 0x1C37, 0x4698, {0x9B, 0x59, 0x08, 0x14, 0xE2, 0x74, 0x91, 0xF8}};

// Slots 3 to 11 are frozen in this order. Figures: BeginFigure, segments, EndFigure; then Close.
class IMpGeometrySink : public gmpi::IMpUnknown {
public:
    // [gui thread] Starts a figure at startPoint (MP1_FIGURE_BEGIN). No result.
    virtual void BeginFigure(MP1_POINT startPoint, int32_t figureBegin) = 0;
    // [gui thread] Ends the current figure, closing it back to its start for MP1_FIGURE_END_CLOSED.
    virtual void EndFigure(int32_t figureEnd) = 0;
    // [gui thread] Adds a straight segment to point. No result.
    virtual void AddLine(MP1_POINT point) = 0;
    // [gui thread] Adds count straight segments (points copied). No result.
    virtual void AddLines(const MP1_POINT* points, uint32_t count) = 0;
    // [gui thread] Adds a cubic curve. No result.
    virtual void AddBezier(const MP1_BEZIER_SEGMENT* bezier) = 0;
    // [gui thread] Adds a quadratic curve. No result.
    virtual void AddQuadraticBezier(const MP1_QUADRATIC_BEZIER_SEGMENT* bezier) = 0;
    // [gui thread] Adds an elliptical arc to arc->point. No result.
    virtual void AddArc(const MP1_ARC_SEGMENT* arc) = 0;
    // [gui thread] Sets how overlapping figures fill (MP1_FILL_MODE). No result.
    virtual void SetFillMode(int32_t fillMode) = 0;
    // [gui thread] Finishes the path; later calls are ignored. Returns 0, or -1 for an unfinished figure.
    virtual int32_t Close() = 0;

protected:
    ~IMpGeometrySink() = default;
};

// Slot 4 is frozen.
class IMpPathGeometry : public IMpResource {
public:
    // [gui thread] Gives the sink that receives the path's figures (the caller owns it). Returns 0, or -1
    // when the path was opened before.
    virtual int32_t Open(IMpGeometrySink** returnGeometrySink) = 0;

protected:
    ~IMpPathGeometry() = default;
};

}  // namespace GmpiDrawing_API
