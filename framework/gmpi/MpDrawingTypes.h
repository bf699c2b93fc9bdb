// The plain value types and codes that cross the drawing interfaces: geometry, colour, gradient and
// brush properties, font metrics, and the enumerations of text, bitmap and path operations.
#pragma once

#include <cstdint>

namespace GmpiDrawing_API {

struct MP1_POINT {
    float x;
    float y;
};

struct MP1_SIZE {
    float width;
    float height;
};

// Bitmap sizes in whole pixels.
struct MP1_SIZE_U {
    uint32_t width;
    uint32_t height;
};

struct MP1_RECT {
    float left;
    float top;
    float right;
    float bottom;
};

// Linear-light components, each 0..1.
struct MP1_COLOR {
    float r;
    float g;
    float b;
    float a;
};

// An affine transform: x' = x*_11 + y*_21 + _31, y' = x*_12 + y*_22 + _32.
struct MP1_MATRIX_3X2 {
    float _11;
    float _12;
    float _21;
    float _22;
    float _31;
    float _32;
};

struct MP1_GRADIENT_STOP {
    float position;  // 0..1 along the gradient
    MP1_COLOR color;
};

struct MP1_BRUSH_PROPERTIES {
    float opacity;  // multiplies every colour's alpha
    MP1_MATRIX_3X2 transform;
};

struct MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES {
    MP1_POINT startPoint;
    MP1_POINT endPoint;
};

struct MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES {
    MP1_POINT center;
    MP1_POINT gradientOriginOffset;  // focus, relative to the centre
    float radiusX;
    float radiusY;
};

struct MP1_ELLIPSE {
    MP1_POINT point;  // centre
    float radiusX;
    float radiusY;
};

struct MP1_ROUNDED_RECT {
    MP1_RECT rect;
    float radiusX;
    float radiusY;
};

// Font metrics in drawing units. Line height = ascent + descent + lineGap.
struct MP1_FONT_METRICS {
    float ascent;
    float descent;
    float lineGap;
    float capHeight;
    float xHeight;
    float underlinePosition;
    float underlineThickness;
    float strikethroughPosition;
    float strikethroughThickness;
};

struct MP1_BEZIER_SEGMENT {
    MP1_POINT point1;
    MP1_POINT point2;
    MP1_POINT point3;
};

struct MP1_QUADRATIC_BEZIER_SEGMENT {
    MP1_POINT point1;
    MP1_POINT point2;
};

struct MP1_ARC_SEGMENT {
    MP1_POINT point;  // end point
    MP1_SIZE size;    // radii
    float rotationAngle;
    int32_t sweepDirection;  // MP1_SWEEP_DIRECTION
    int32_t arcSize;         // MP1_ARC_SIZE
};

enum MP1_FONT_WEIGHT : int32_t {
    MP1_FONT_WEIGHT_THIN = 100,
    MP1_FONT_WEIGHT_LIGHT = 300,
    MP1_FONT_WEIGHT_NORMAL = 400,
    MP1_FONT_WEIGHT_DEMI_BOLD = 600,
    MP1_FONT_WEIGHT_BOLD = 700,
    MP1_FONT_WEIGHT_BLACK = 900,
};

enum MP1_FONT_STYLE : int32_t {
    MP1_FONT_STYLE_NORMAL = 0,
    MP1_FONT_STYLE_OBLIQUE = 1,
    MP1_FONT_STYLE_ITALIC = 2,
};

enum MP1_FONT_STRETCH : int32_t {
    MP1_FONT_STRETCH_CONDENSED = 3,
    MP1_FONT_STRETCH_NORMAL = 5,
    MP1_FONT_STRETCH_EXPANDED = 7,
};

// Horizontal placement of text in its layout rectangle.
enum MP1_TEXT_ALIGNMENT : int32_t {
    MP1_TEXT_ALIGNMENT_LEADING = 0,
    MP1_TEXT_ALIGNMENT_TRAILING = 1,
    MP1_TEXT_ALIGNMENT_CENTER = 2,
};

// Vertical placement of text in its layout rectangle.
enum MP1_PARAGRAPH_ALIGNMENT : int32_t {
    MP1_PARAGRAPH_ALIGNMENT_NEAR = 0,
    MP1_PARAGRAPH_ALIGNMENT_FAR = 1,
    MP1_PARAGRAPH_ALIGNMENT_CENTER = 2,
};

enum MP1_WORD_WRAPPING : int32_t {
    MP1_WORD_WRAPPING_WRAP = 0,
    MP1_WORD_WRAPPING_NO_WRAP = 1,
};

// Bit set of DrawTextU options.
enum MP1_DRAW_TEXT_OPTIONS : int32_t {
    MP1_DRAW_TEXT_OPTIONS_NONE = 0,
    MP1_DRAW_TEXT_OPTIONS_NO_SNAP = 1,
    MP1_DRAW_TEXT_OPTIONS_CLIP = 2,  // nothing is drawn outside the layout rectangle
};

enum MP1_BITMAP_INTERPOLATION_MODE : int32_t {
    MP1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR = 0,
    MP1_BITMAP_INTERPOLATION_MODE_LINEAR = 1,
};

// Bit set of IMpBitmap::lockPixels flags.
enum MP1_BITMAP_LOCK_FLAGS : int32_t {
    MP1_BITMAP_LOCK_READ = 1,
    MP1_BITMAP_LOCK_WRITE = 2,
};

enum MP1_FIGURE_BEGIN : int32_t {
    MP1_FIGURE_BEGIN_FILLED = 0,
    MP1_FIGURE_BEGIN_HOLLOW = 1,
};

enum MP1_FIGURE_END : int32_t {
    MP1_FIGURE_END_OPEN = 0,
    MP1_FIGURE_END_CLOSED = 1,
};

enum MP1_FILL_MODE : int32_t {
    MP1_FILL_MODE_ALTERNATE = 0,
    MP1_FILL_MODE_WINDING = 1,
};

enum MP1_SWEEP_DIRECTION : int32_t {
    MP1_SWEEP_DIRECTION_COUNTER_CLOCKWISE = 0,
    MP1_SWEEP_DIRECTION_CLOCKWISE = 1,
};

enum MP1_ARC_SIZE : int32_t {
    MP1_ARC_SIZE_SMALL = 0,
    MP1_ARC_SIZE_LARGE = 1,
};

}  // namespace GmpiDrawing_API

// The host reads these records field by field: their layout is part of the interface.
static_assert(sizeof(GmpiDrawing_API::MP1_POINT) == 8);
static_assert(sizeof(GmpiDrawing_API::MP1_SIZE) == 8);
static_assert(sizeof(GmpiDrawing_API::MP1_SIZE_U) == 8);
static_assert(sizeof(GmpiDrawing_API::MP1_RECT) == 16);
static_assert(sizeof(GmpiDrawing_API::MP1_COLOR) == 16);
static_assert(sizeof(GmpiDrawing_API::MP1_MATRIX_3X2) == 24);
static_assert(sizeof(GmpiDrawing_API::MP1_GRADIENT_STOP) == 20);
static_assert(sizeof(GmpiDrawing_API::MP1_BRUSH_PROPERTIES) == 28);
static_assert(sizeof(GmpiDrawing_API::MP1_LINEAR_GRADIENT_BRUSH_PROPERTIES) == 16);
static_assert(sizeof(GmpiDrawing_API::MP1_RADIAL_GRADIENT_BRUSH_PROPERTIES) == 24);
static_assert(sizeof(GmpiDrawing_API::MP1_ELLIPSE) == 16);
static_assert(sizeof(GmpiDrawing_API::MP1_ROUNDED_RECT) == 24);
static_assert(sizeof(GmpiDrawing_API::MP1_FONT_METRICS) == 36);
static_assert(sizeof(GmpiDrawing_API::MP1_BEZIER_SEGMENT) == 24);
static_assert(sizeof(GmpiDrawing_API::MP1_ARC_SEGMENT) == 28);
static_assert(sizeof(GmpiDrawing_API::MP1_TEXT_ALIGNMENT) == 4);
